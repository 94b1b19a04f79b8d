# SPDX-License-Identifier: Apache-2.0
"""Says in a few lines what was simulated and what qlctl saw of it.

usage: demo_summary.py SCENARIO SIMULATED WATCHED

SCENARIO is the file that was played, SIMULATED the simulated receiver's own status at the end, as JSON. WATCHED is what
"qlctl gps watch" wrote, one screen after another or one line after another: both carry the same texts.
"""

import json
import math
import re
import sys
import tomllib
from dataclasses import dataclass
from pathlib import Path

CONTROL_SEQUENCE = re.compile(r"\x1b\[[0-9;?]*[A-Za-z]")
TIME = re.compile(r"(\d{4}-\d\d-\d\d) (\d\d:\d\d:\d\d) UTC")
POSITION = re.compile(r"([\d.]+) ([NS])  ([\d.]+) ([EW])  altitude (-?[\d.]+) m(  \(last known\))?")
SPEED = re.compile(r"([\d.]+) km/h")
SATELLITES = re.compile(r"(\d+) used, (\d+) in view")


@dataclass
class Reading:
    date: str
    time: str
    fixed: bool = False
    latitude: float = 0.0
    longitude: float = 0.0
    speed: float = 0.0
    used: int = 0
    in_view: int = 0


def reading_of(date, time, text):
    reading = Reading(date, time)
    if match := POSITION.search(text):
        reading.latitude = float(match[1]) * (-1 if match[2] == "S" else 1)
        reading.longitude = float(match[3]) * (-1 if match[4] == "W" else 1)
        reading.fixed = match[6] is None
    if match := SPEED.search(text):
        reading.speed = float(match[1])
    if match := SATELLITES.search(text):
        reading.used, reading.in_view = int(match[1]), int(match[2])
    return reading


def readings_of(text):
    """One reading for each second of the receiver's clock: the last that was shown of it."""
    text = CONTROL_SEQUENCE.sub("", text)
    times = list(TIME.finditer(text))
    ends = [match.start() for match in times[1:]] + [len(text)]
    readings = {}
    for match, end in zip(times, ends):
        readings[match.groups()] = reading_of(match[1], match[2], text[match.end() : end])
    return [readings[moment] for moment in sorted(readings)]


def metres(a, b):
    radius = 6371008.8
    phi_a, phi_b = math.radians(a.latitude), math.radians(b.latitude)
    half = math.sin((phi_b - phi_a) / 2) ** 2
    half += math.cos(phi_a) * math.cos(phi_b) * math.sin(math.radians(b.longitude - a.longitude) / 2) ** 2
    return 2 * radius * math.asin(math.sqrt(half))


def degrees(latitude, longitude):
    return f"{abs(latitude):.5f} {'S' if latitude < 0 else 'N'} {abs(longitude):.5f} {'W' if longitude < 0 else 'E'}"


def simulated_facts(scenario_file, state):
    receiver = tomllib.loads(Path(scenario_file).read_text(encoding="utf-8"))["device"][0]
    track = receiver["track"]
    systems = "GPS and GLONASS" if receiver["glonass"] else "GPS"
    yield "Scenario", scenario_file
    yield "Receiver", f"{systems}, switched on cold, {state['epochs']} reports in {state['seconds']:.0f} s on a USB cable"
    yield "Track", f"{len(track['waypoints'])} corners from {degrees(*track['waypoints'][0])}, {track['speed_kmh']} km/h"
    yield "Sky", f"{state['satellites_in_view']} satellites in view, moving at {receiver['sky_speed']} times their speed"


def read_facts(readings):
    first, last = readings[0], readings[-1]
    yield "Time", f"{first.date}, {first.time} to {last.time} UTC: {len(readings)} seconds"
    fixed = [reading for reading in readings if reading.fixed]
    if not fixed:
        yield "Fix", "none"
        return
    yield "Fix", f"in {len(fixed)} of {len(readings)} seconds, the first at {fixed[0].time}"
    start, end = fixed[0], fixed[-1]
    way = sum(metres(a, b) for a, b in zip(fixed, fixed[1:]))
    yield "Track", f"{way:.0f} m, at up to {max(reading.speed for reading in fixed):.0f} km/h"
    yield "From", degrees(start.latitude, start.longitude)
    yield "To", degrees(end.latitude, end.longitude)
    used = max(reading.used for reading in fixed)
    yield "Satellites", f"up to {max(reading.in_view for reading in readings)} in view, {used} used for the fix"


def show(title, facts):
    print(title)
    for label, text in facts:
        print(f"  {label:<12}{text}")
    print()


def main():
    scenario, simulated, watched = sys.argv[1:]
    state = json.loads(Path(simulated).read_text(encoding="utf-8"))
    # A screen may be cut at its end, in the middle of a character.
    readings = readings_of(Path(watched).read_text(encoding="utf-8", errors="replace"))
    print()
    show("What was simulated", simulated_facts(scenario, state))
    if not readings:
        print("The library read nothing.")
        return 1
    show("What an application read through qlsdk.dll", read_facts(readings))
    return 0 if any(reading.fixed for reading in readings) else 1


if __name__ == "__main__":
    sys.exit(main())

# SPDX-License-Identifier: Apache-2.0
"""The drive as "qlctl gps watch" showed it: one screen after another or one line after another, with the same texts.

The port has one user at a time, so that there is no second application that takes the same readings down as JSON.
"""

import math
import re
from dataclasses import dataclass

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
    """Between two places, each a latitude and a longitude."""
    radius = 6371008.8
    phi_a, phi_b = math.radians(a[0]), math.radians(b[0])
    half = math.sin((phi_b - phi_a) / 2) ** 2
    half += math.cos(phi_a) * math.cos(phi_b) * math.sin(math.radians(b[1] - a[1]) / 2) ** 2
    return 2 * radius * math.asin(math.sqrt(half))


def way(readings):
    places = [(reading.latitude, reading.longitude) for reading in readings]
    return sum(metres(a, b) for a, b in zip(places, places[1:]))


def degrees(latitude, longitude):
    return f"{abs(latitude):.5f} {'S' if latitude < 0 else 'N'} {abs(longitude):.5f} {'W' if longitude < 0 else 'E'}"

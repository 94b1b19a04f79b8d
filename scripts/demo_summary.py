# SPDX-License-Identifier: Apache-2.0
"""Says in a few lines what was simulated and what an application saw of it, and whether the two agree.

usage: demo_summary.py SCENARIO FOLDER

SCENARIO is the file that was played, FOLDER has what ./dev demo took down. The exit status is 1 when they disagree.
"""

import json
import re
import sys
import textwrap
import tomllib

from demo_codes import bytes_of, codes_not_read, held_codes, read_codes, shown_codes
from demo_patrol import degrees, metres, readings_of, way
from demo_record import Record, Story, counted, listing

WIDTH = 110
LABEL = "{:<18}{:<11}"
RESULT_NAME = re.compile(r"\((QLERR_\w+)\)")
# Farther than a car gets between the last reading and the question where the receiver is.
TOO_FAR = 200


def devices(record):
    story = Story("Built-in devices")
    for moment, name in (("simulated-first", "devices"), ("simulated", "devices-after")):
        real = record.device("probe", moment)["devices"]
        told = record.answer(name)
        states = [(device["device"], device["available"], device["powered"]) for device in told["devices"]]
        listed = [(entry["device"], entry["power_state"], entry["bios_state"]) for entry in told["listed"]]
        story.expect(
            states == [(device["number"], device["available"], device["power"] == 1) for device in real]
            and listed == [(device["number"], device["power"], device["bios"]) for device in real],
            f"{name}.json has other states than the devices",
        )
    first, after = (record.answer(name)["devices"] for name in ("devices", "devices-after"))
    woken = [now["device"] for before, now in zip(first, after) if now["powered"] and not before["powered"]]
    story.expect(woken, "no device got its power")
    absent = [device["number"] for device in real if not device["available"]]
    story.simulated = f"{len(real)} places, {listing(absent)} empty; device {listing(woken)} was switched on"
    with_power = [sum(device["powered"] for device in moment) for moment in (first, after)]
    story.seen = (
        f"{sum(device['available'] for device in after)} available,"
        f" {sum(device['enabled_in_bios'] for device in after)} enabled in the BIOS,"
        f" {with_power[0]} with power and then {with_power[1]}"
    )
    return story


def batteries(record):
    story = Story("Batteries")
    real = record.device("probe")["batteries"]
    told = record.answer("batteries")["batteries"]
    for battery in real:
        facts = {"battery" if key == "number" else key: value for key, value in battery.items()}
        story.expect(
            any(facts.items() <= answer.items() for answer in told), f"battery {battery['number']} was seen otherwise"
        )

    def charge(battery):
        return f"{battery['name']} {battery['remaining_capacity']} of {battery['full_charged_capacity']}"

    story.simulated = listing(map(charge, real))
    story.seen = listing(charge(battery) for battery in told if battery["error"] is None)
    return story


def light(record):
    story = Story("Camera light")
    states = record.answers("lamp.json")
    lamp = [state["timer"] for state in states]
    story.expect(states and not states[-1]["on"] and lamp[-1] == 0, "the lamp did not go off")
    story.expect(len(lamp) > 1 and lamp == sorted(set(lamp), reverse=True), "the lamp did not count down")
    told = [(state["on"], state["timer"]) for state in record.answers("light.txt")]
    story.expect(told[:2] == [(True, 255), (False, 0)], "the light was not seen to go on and off")
    story.expect(
        len(told) == 3 and told[2][0] and max(lamp, default=0) <= told[2][1] < 255, "the timer was seen otherwise"
    )
    story.simulated = f"a lamp that counted {listing(lamp)}"
    story.seen = listing(f"on (timer {timer})" if on else "off" for on, timer in told)
    return story


def accounts(record):
    """The account numbers of all cards that may have been swiped."""
    for reader in record.planned("card-reader"):
        for file in reader.get("card_files", []):
            wallet = tomllib.loads((record.beside_scenario / file).read_text(encoding="utf-8"))
            yield from (card["account"] for card in wallet["card"] if "account" in card)


def swipe_words(swipe):
    if not swipe["valid"]:
        bad = [track["track"] for track in swipe["tracks"] if track["decode_status"] != 0]
        return f"one not valid (track {listing(bad)} not decoded)"
    account = next((track["card"]["account"] for track in swipe["masked_tracks"] if track["card"]), "no bank card")
    return f"one {'encrypted' if swipe['encrypted'] else 'in clear'} ({account})"


def cards(record):
    story = Story("Card reader")
    reader = record.device("reader")
    swipes = record.answers("swipes.json")
    shown = record.shown("cards")
    for name in ("readers", "readers-after"):
        serials = [told["serial_number"] for told in record.answer(name)["readers"]]
        story.expect(serials == [reader["serial"]], f"{name}.json has the readers {listing(serials)}")
    story.expect(shown.count("\nSwipe ") == len(swipes) == reader["swipes"], "swipes were lost or doubled")
    story.expect(
        [(swipe["valid"], swipe["encrypted"]) for swipe in swipes] == [(True, False), (True, True), (False, False)],
        "the swipes were of other kinds",
    )
    story.expect(all(swipe["reader_serial"] == reader["serial"] for swipe in swipes), "swipes of another reader")
    story.expect(
        not any(account in text for account in accounts(record) for text in (shown, json.dumps(swipes))),
        "an account number was shown",
    )
    others = [device["name"] for device in record.planned("hid")]
    story.simulated = (
        f"reader {reader['serial']}, beside {listing(others)}: {counted(reader['swipes'], 'swipe')},"
        f" {counted(reader['set_features'], 'question')} answered; pulled out and put back"
    )
    story.seen = f"{counted(len(swipes), 'swipe')}: {listing(map(swipe_words, swipes))}; then the unplugging"
    return story


def scanners(record):
    story = Story("Barcode scanners")
    engines = {name: record.device(name) for name in ("intermec", "honeywell")}
    told = {name: record.answer(f"scanner-{name}") for name in engines}
    held = held_codes(record.shown("codes"))
    shown = record.shown("scanners")
    read, refused, seen = read_codes(shown), codes_not_read(shown), shown_codes(shown)
    for name, engine in engines.items():
        of_engine = [code for code in held if code.scanner == name]
        story.expect(
            told[name]["firmware"] == engine["firmware"] and told[name]["scanner"].lower().startswith(name),
            f"the {name} engine is told to be {told[name]['scanner']}, {told[name]['firmware']}",
        )
        story.expect(of_engine and engine["read"] == len(of_engine), f"the {name} engine read {engine['read']} codes")
        story.expect(
            engine["missed"] == sum(scanner == name for scanner, _ in refused), f"the {name} engine missed codes"
        )
        story.expect(engine["connected"] == 0, f"the {name} engine was not given back")
    story.expect(len(held) == len(read) == len(seen), "scans were lost or doubled")
    for code, engine_read, delivered in zip(held, read, seen):
        story.expect(
            (engine_read.symbology, engine_read.length) == (code.symbology, len(bytes_of(code.text))),
            f"{code.text} was read otherwise",
        )
        story.expect(
            (delivered.identifier, delivered.text, delivered.data)
            == (engine_read.identifier, code.edited, bytes_of(code.edited)),
            f"{code.text} came as {delivered.text} ({delivered.identifier})",
        )
    edits = [f"{code.text} became {code.edited}" for code in held if code.edited != code.text]
    story.expect(edits, "no rule was at work")
    story.expect(refused, "the symbology that was disabled was read")

    def reading(name):
        kinds = listing(dict.fromkeys(code.symbology for code in held if code.scanner == name))
        return f"{engines[name]['firmware']} read {counted(engines[name]['read'], 'code')} ({kinds})"

    story.simulated = f"{listing(map(reading, engines))}; not read: {listing(reason for _, reason in refused)}"
    story.seen = (
        f"{counted(len(seen), 'scan')} from {listing(answer['scanner'] for answer in told.values())}; {listing(edits)}"
    )
    return story


def letters(data):
    return bytes.fromhex(data).decode("latin-1").rstrip("\0")


def rfid(record):
    story = Story("UHF RFID reader")
    reader = record.device("rfid")
    first, after = ({tag["epc"]: tag["user"] for tag in record.answer(name)} for name in ("tags-first", "tags"))
    told = {name: record.answer(name) for name in ("carton-first", "carton", "pallet-refused", "pallet")}
    for name, answer in told.items():
        real = after if name in ("carton", "pallet") else first
        story.expect(real[answer["epc"]] == answer["data"], f"{name}.json is not what the tag holds")
    carton, pallet = told["carton"]["epc"], told["pallet"]["epc"]
    story.expect(first[carton] != after[carton], "nothing was written to the tag without a lock")
    story.expect(first[pallet] != after[pallet], "nothing was written to the locked tag with its password")
    refusals = RESULT_NAME.findall(record.shown("rfid"))
    story.expect(refusals == ["QLERR_UHFRFID_MEMORY_LOCKED"], f"the errors shown are {listing(refusals)}")

    near, weak = ({tag["epc"] for tag in record.answer(name)["tags"]} for name in ("inventory", "inventory-weak"))
    story.expect(near == set(first), "the inventory is not what is in the field")
    story.expect(weak < near, "no tag fell silent with less power")
    power, query, parameters = record.answer("power")["power"], record.answer("query"), reader["parameters"]
    story.expect(power == reader["power"] < record.device("rfid", "simulated-first")["power"], "another power was told")
    names = {"miller": "miller", "session": "session", "q": "q-begin", "sensitivity_dbm": "sensitivity"}
    story.expect(
        {name: query[name] for name in names} == {name: parameters[own] for name, own in names.items()},
        "other parameters were told",
    )
    story.expect(parameters != record.device("rfid", "simulated-first")["parameters"], "no parameter was changed")

    story.simulated = (
        f"{counted(len(first), 'tag')}, one of them locked; {counted(reader['received'], 'command')} and"
        f" {counted(reader['sent'], 'reply').replace('replys', 'replies')} crossed the bus"
    )
    story.seen = (
        f"{counted(len(near), 'tag')}, {len(weak)} at power {power}; {letters(first[carton])} became"
        f" {letters(told['carton']['data'])}; {letters(told['pallet-refused']['data'])} refused without its password"
        f" ({listing(refusals)}) and with it became {letters(told['pallet']['data'])}"
    )
    return story


def patrol(record):
    story = Story("GPS receiver")
    state, plan = record.device("gps"), record.planned("gps")[0]
    story.simulated = (
        f"{'GPS and GLONASS' if plan['glonass'] else 'GPS'}, {counted(state['sentences'], 'sentence')};"
        f" {len(plan['track']['waypoints'])} corners from {degrees(*plan['track']['waypoints'][0])},"
        f" {plan['track']['speed_kmh']} km/h; {state['satellites_in_view']} satellites in view"
    )
    readings = readings_of(record.shown("gps"))
    fixed = [reading for reading in readings if reading.fixed]
    story.expect(fixed, "there was no fix")
    story.seen = counted(len(readings), "second") + f", {len(fixed)} with a fix"
    if fixed:
        end = (fixed[-1].latitude, fixed[-1].longitude)
        story.expect(metres(end, (state["latitude"], state["longitude"])) < TOO_FAR, "the drive ended elsewhere")
        story.seen += (
            f" from {fixed[0].time} UTC on; {way(fixed):.0f} m to {degrees(*end)},"
            f" at up to {max(reading.speed for reading in fixed):.0f} km/h;"
            f" {max(reading.in_view for reading in readings)} satellites in view, up to"
            f" {max(reading.used for reading in fixed)} used"
        )
    return story


def show(label, source, text):
    head = LABEL.format(label, source)
    print(textwrap.fill(text, WIDTH, initial_indent=head, subsequent_indent=" " * len(head), break_on_hyphens=False))


def summarise(scenario, folder):
    record = Record(scenario, folder)
    stories = [tell(record) for tell in (devices, batteries, light, cards, scanners, rfid, patrol)]
    print("\nWhat was simulated, and what an application saw of it through qlsdk.dll:\n")
    for story in stories:
        show(story.title, "simulated", story.simulated)
        show("", "seen", story.seen)
    faults = [f"{story.title}: {fault}" for story in stories for fault in story.faults]
    print("\n" + ("\n".join(["NOT AS IT SHOULD BE", *faults]) if faults else "Both agree in everything that was compared."))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(summarise(*sys.argv[1:]))

# SPDX-License-Identifier: Apache-2.0
"""The summary of ./dev demo tells what happened, and says so when something went otherwise.

usage: demo_summary_test.py SCRIPTS_FOLDER
"""

import contextlib
import copy
import io
import json
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, sys.argv.pop())
import demo_summary  # where it is has just been said

SCENARIO = """
[[device]]
kind = "gps"
name = "gps"
glonass = true
[device.track]
speed_kmh = 50
waypoints = [[48.0, 16.0], [48.1, 16.0]]

[[device]]
kind = "card-reader"
name = "reader"
card_files = ["cards.toml"]

[[device]]
kind = "hid"
name = "keyboard"
"""
CARDS = '[[card]]\nid = "visa"\naccount = "4111111111111111"\n[[card]]\nid = "staff"\n'

TAG, LOCKED_TAG, FAR_TAG = "AA01", "AA02", "AA03"
ABSENT, ASLEEP, AWAKE = (False, 0, 0), (True, 0, 1), (True, 1, 1)


def simulated_probe(*states):
    devices = [{"number": n, "available": a, "power": p, "bios": b} for n, (a, p, b) in enumerate(states, 1)]
    return {"device": "probe", "devices": devices, "batteries": [{"number": 1, **BATTERY}]}


def told_devices(*states):
    numbered = list(enumerate(states, 1))
    asked = [
        {"device": n, "available": a, "powered": p == 1, "enabled_in_bios": p == 1 and b in (1, 2)}
        for n, (a, p, b) in numbered
    ]
    return {"devices": asked, "listed": [{"device": n, "power_state": p, "bios_state": b} for n, (a, p, b) in numbered]}


def simulated_rfid(power, miller):
    parameters = {"link-frequency": 9, "miller": miller, "session": 0, "q-begin": 4, "sensitivity": -70}
    return {"device": "rfid", "power": power, "parameters": parameters, "received": 20, "sent": 20}


def swipe(valid, encrypted, bad=0):
    statuses = [1 if track == bad else 0 for track in (1, 2, 3)]
    account = {"account": "411111******1111"}
    return {
        "valid": valid,
        "encrypted": encrypted,
        "reader_serial": "B1",
        "tracks": [{"track": track, "decode_status": status} for track, status in enumerate(statuses, 1)],
        "masked_tracks": [{"track": 2, "card": account}],
    }


def engine(name, read, missed, connected=0):
    return {"device": name, "firmware": f"{name} 1", "read": read, "missed": missed, "connected": connected}


def scanner(name):
    return {"scanner": f"{name.capitalize()} X", "firmware": f"{name} 1"}


def held(*codes):
    """Scanner, symbology, text and what the application's rule makes of it."""
    return "".join("\t".join(code) + "\n" for code in codes)


def scanned(identifier, text, data):
    return f"Scan 1  Some Code ({identifier}), of some kind\n  Text    {text}\n  Bytes   {data}\n"


def edited(identifier, before, after):
    return f"Symbology     Some Code ({identifier})\nBefore        {before}\nAfter         {after}\n"


def tags(carton, pallet):
    return [{"epc": TAG, "user": carton}, {"epc": LOCKED_TAG, "user": pallet}, {"epc": FAR_TAG, "user": ""}]


def inventory(*epcs):
    return {"tags": [{"epc": epc} for epc in epcs]}


def second(number, fix):
    return f"2026-01-01 10:00:{number:02} UTC  {fix}  27.0 kn  50.0 km/h  0.0 deg  HDOP 0.70  9 used, 11 in view\n"


BATTERY = {"name": "MAIN", "id": "0027", "remaining_capacity": 900, "full_charged_capacity": 1000}
READER = {"device": "reader", "serial": "B1", "swipes": 3, "set_features": 6}
GPS = {"device": "gps", "sentences": 200, "satellites_in_view": 11, "latitude": 48.0003, "longitude": 16.0}
HELD = [
    ("intermec", "EAN_13", "40063", "40063"),
    ("intermec", "Code128", "1-2", "1-2"),
    ("intermec", "Code128", "1-2", "12"),
    ("honeywell", "EAN_128", r"A\x1DB", "A|B"),
]
CODES_SHOWN = [
    "read 5 bytes, EAN_13 ]E0\n" + scanned("]E0", "40063", "3430303633"),
    "read 3 bytes, Code128 ]C0\nread 3 bytes, Code128 ]C0\n" + edited("]C0", "1-2", "12"),
    "qlsim-ctl: honeywell: not read: QR is not enabled\n",
    "read 3 bytes, EAN_128 ]C1\n" + scanned("]C1", "A|B", "417C\n          42"),
]
ONE_ANSWER_A_LINE = ("light.txt", "lamp.json", "swipes.json")
RECORD = {
    "simulated-first.json": {"devices": [simulated_probe(AWAKE, ASLEEP, ABSENT), simulated_rfid(27, 2)]},
    "simulated.json": {
        "devices": [
            simulated_probe(AWAKE, AWAKE, ABSENT),
            simulated_rfid(19, 3),
            READER,
            GPS,
            engine("intermec", 3, 0),
            engine("honeywell", 1, 1),
        ]
    },
    "devices.json": told_devices(AWAKE, ASLEEP, ABSENT),
    "devices-after.json": told_devices(AWAKE, AWAKE, ABSENT),
    "batteries.json": {"batteries": [{"battery": 1, "error": None, **BATTERY}]},
    "light.txt": [{"on": True, "timer": 255}, {"on": False, "timer": 0}, {"on": True, "timer": 3}],
    "lamp.json": [{"on": True, "timer": 3}, {"on": True, "timer": 1}, {"on": False, "timer": 0}],
    "readers.json": {"readers": [{"serial_number": "B1"}]},
    "readers-after.json": {"readers": [{"serial_number": "B1"}]},
    "swipes.json": [swipe(True, False), swipe(True, True), swipe(False, False, bad=1)],
    "cards.txt": "waiting\nSwipe 1  valid\n  411111******1111\nSwipe 2\nSwipe 3\ngone\n",
    "codes.txt": held(*HELD),
    "scanners.txt": "".join(CODES_SHOWN),
    "scanner-intermec.json": scanner("intermec"),
    "scanner-honeywell.json": scanner("honeywell"),
    "tags-first.json": tags("41420000", "43440000"),
    "tags.json": tags("58420000", "59440000"),
    "inventory.json": inventory(TAG, LOCKED_TAG, FAR_TAG),
    "inventory-weak.json": inventory(TAG, LOCKED_TAG),
    "carton-first.json": {"epc": TAG, "data": "41420000"},
    "carton.json": {"epc": TAG, "data": "58420000"},
    "pallet-refused.json": {"epc": LOCKED_TAG, "data": "43440000"},
    "pallet.json": {"epc": LOCKED_TAG, "data": "59440000"},
    "rfid.txt": "qlctl: error 65668 (QLERR_UHFRFID_MEMORY_LOCKED): so it is\n",
    "power.json": {"power": 19},
    "query.json": {"link_frequency_khz": 256, "miller": 3, "session": 0, "q": 4, "sensitivity_dbm": -70},
    "gps.txt": second(1, "no fix  not known yet")
    + second(2, "3D  48.000100 N  16.000000 E  altitude 171.0 m")
    + second(3, "3D  48.000200 N  16.000000 E  altitude 171.0 m"),
}


def with_changed(file, *path_and_value):
    """The record with one value in one file replaced; without a path, the whole file."""
    record = copy.deepcopy(RECORD)
    *path, value = path_and_value
    place, key = record, file
    for step in path:
        place, key = place[key], step
    place[key] = value
    return record


# What went otherwise, and the beginning of the complaint.
FAILURES = {
    "a device is told to be absent": (
        with_changed("devices.json", "devices", 0, "available", False),
        "Built-in devices: devices.json has",
    ),
    "the list has another BIOS state": (
        with_changed("devices-after.json", "listed", 1, "bios_state", 0),
        "Built-in devices: devices-after.json has",
    ),
    "no device is switched on": (
        with_changed("devices.json", told_devices(AWAKE, AWAKE, ABSENT)),
        "Built-in devices: no device got its power",
    ),
    "a battery is told with another charge": (
        with_changed("batteries.json", "batteries", 0, "remaining_capacity", 901),
        "Batteries: battery 1 was seen otherwise",
    ),
    "a battery cannot be asked": (
        with_changed("batteries.json", "batteries", 0, {"battery": 1, "error": {"code": 5}}),
        "Batteries: battery 1 was seen otherwise",
    ),
    "the light does not go off when told so": (
        with_changed("light.txt", 1, "on", True),
        "Camera light: the light was not seen",
    ),
    "the lamp does not count": (with_changed("lamp.json", 1, "timer", 3), "Camera light: the lamp did not count"),
    "the lamp stays on": (with_changed("lamp.json", 2, "on", True), "Camera light: the lamp did not go off"),
    "the time does not reach the lamp": (
        with_changed("light.txt", 2, "timer", 2),
        "Camera light: the timer was seen otherwise",
    ),
    "another device is taken for a reader": (
        with_changed("readers.json", "readers", 0, "serial_number", "KEYBOARD"),
        "Card reader: readers.json has the readers KEYBOARD",
    ),
    "a swipe is lost": (
        with_changed("swipes.json", [swipe(True, False), swipe(True, True)]),
        "Card reader: swipes were lost",
    ),
    "a swipe is not shown": (with_changed("cards.txt", "\nSwipe 1\nSwipe 2\n"), "Card reader: swipes were lost"),
    "a bad swipe counts as valid": (with_changed("swipes.json", 2, "valid", True), "Card reader: the swipes were"),
    "a swipe of another reader": (with_changed("swipes.json", 1, "reader_serial", "B2"), "Card reader: swipes of"),
    "an account number is shown": (
        with_changed("cards.txt", RECORD["cards.txt"] + "4111111111111111"),
        "Card reader: an account number",
    ),
    "an account number is in the JSON": (
        with_changed("swipes.json", 0, "tracks", 0, "text", ";4111111111111111=28?"),
        "Card reader: an account number",
    ),
    "another scanner is told": (
        with_changed("scanner-honeywell.json", scanner("intermec")),
        "Barcode scanners: the honeywell engine is told to be Intermec X, intermec 1",
    ),
    "another firmware is told": (
        with_changed("scanner-intermec.json", "firmware", "0"),
        "Barcode scanners: the intermec engine is told",
    ),
    "a code is read twice": (
        with_changed("simulated.json", "devices", 4, engine("intermec", 4, 0)),
        "Barcode scanners: the intermec engine read 4",
    ),
    "a code is missed": (
        with_changed("simulated.json", "devices", 4, engine("intermec", 3, 1)),
        "Barcode scanners: the intermec engine missed",
    ),
    "one engine is not used at all": (
        with_changed("codes.txt", held(*HELD[:3])),
        "Barcode scanners: the honeywell engine read 1",
    ),
    "an engine stays connected": (
        with_changed("simulated.json", "devices", 5, engine("honeywell", 1, 1, connected=7)),
        "Barcode scanners: the honeywell engine was not given back",
    ),
    "a scan is lost": (
        with_changed("scanners.txt", "".join(CODES_SHOWN[:3]) + "read 3 bytes, EAN_128 ]C1\n"),
        "Barcode scanners: scans were lost",
    ),
    "a scan comes twice": (
        with_changed("scanners.txt", "".join([*CODES_SHOWN, scanned("]C1", "A|B", "417C42")])),
        "Barcode scanners: scans were lost",
    ),
    "the engine reads another code": (
        with_changed("scanners.txt", "".join(CODES_SHOWN).replace("read 5 bytes", "read 6 bytes")),
        "Barcode scanners: 40063 was read otherwise",
    ),
    "a scan comes as another symbology": (
        with_changed("scanners.txt", "".join(CODES_SHOWN).replace("Code (]E0)", "Code (]E4)")),
        "Barcode scanners: 40063 came as 40063 (]E4)",
    ),
    "a scan comes with other bytes": (
        with_changed("scanners.txt", "".join(CODES_SHOWN).replace("3430303633", "3430303634")),
        "Barcode scanners: 40063 came as",
    ),
    "a rule has no effect": (
        with_changed("scanners.txt", "".join(CODES_SHOWN).replace("After         12", "After         1-2")),
        "Barcode scanners: 1-2 came as 1-2",
    ),
    "there is no rule": (
        with_changed("codes.txt", held(*((*code[:3], code[2]) for code in HELD))),
        "Barcode scanners: no rule was at work",
    ),
    "nothing is left unread": (
        with_changed("scanners.txt", "".join(CODES_SHOWN[:2] + CODES_SHOWN[3:])),
        "Barcode scanners: the honeywell engine missed",
    ),
    "a tag is missing": (with_changed("inventory.json", inventory(TAG, LOCKED_TAG)), "UHF RFID reader: the inventory"),
    "power has no effect": (
        with_changed("inventory-weak.json", RECORD["inventory.json"]),
        "UHF RFID reader: no tag fell silent",
    ),
    "another power is told": (with_changed("power.json", "power", 27), "UHF RFID reader: another power"),
    "another parameter is told": (with_changed("query.json", "miller", 2), "UHF RFID reader: other parameters"),
    "the locked tag takes the refused words": (
        with_changed("pallet-refused.json", "data", "59440000"),
        "UHF RFID reader: pallet-refused.json",
    ),
    "a write does not reach the tag": (
        with_changed("tags.json", tags("41420000", "59440000")),
        "UHF RFID reader: nothing was written to the tag",
    ),
    "nothing is refused": (with_changed("rfid.txt", "written\n"), "UHF RFID reader: the errors shown are none"),
    "there is no fix": (with_changed("gps.txt", second(1, "no fix")), "GPS receiver: there was no fix"),
    "the drive ends elsewhere": (
        with_changed("simulated.json", "devices", 3, "latitude", 48.1),
        "GPS receiver: the drive ended elsewhere",
    ),
}


def text_of(file, content):
    if isinstance(content, str):
        return content
    if file in ONE_ANSWER_A_LINE:
        return "\n".join(json.dumps(answer) for answer in content)
    return json.dumps(content)


def summary_of(record):
    """The exit status, and what was said."""
    with tempfile.TemporaryDirectory() as name, contextlib.redirect_stdout(io.StringIO()) as said:
        folder = Path(name)
        (folder / "scenario.toml").write_text(SCENARIO, encoding="utf-8")
        (folder / "cards.toml").write_text(CARDS, encoding="utf-8")
        for file, content in record.items():
            (folder / file).write_text(text_of(file, content), encoding="utf-8")
        return demo_summary.summarise(folder / "scenario.toml", folder), said.getvalue()


class DemoSummary(unittest.TestCase):
    def test_tells_both_sides_when_they_agree(self):
        status, said = summary_of(RECORD)
        self.assertEqual(status, 0, said)
        told = " ".join(said.split())
        for words in (
            "3 places, 3 empty; device 2 was switched on",
            "seen 2 available, 2 enabled in the BIOS, 1 with power and then 2",
            "seen MAIN 900 of 1000",
            "a lamp that counted 3, 1 and 0",
            "one in clear (411111******1111), one encrypted (411111******1111) and one not valid (track 1 not decoded)",
            "simulated intermec 1 read 3 codes (EAN_13 and Code128) and honeywell 1 read 1 code (EAN_128);"
            " not read: QR is not enabled",
            r"seen 4 scans from Intermec X and Honeywell X; 1-2 became 12 and A\x1DB became A|B",
            "seen 3 tags, 2 at power 19; AB became XB; CD refused without its password",
            "seen 3 seconds, 2 with a fix from 10:00:02 UTC on; 11 m to 48.00020 N 16.00000 E",
        ):
            self.assertIn(words, told)

    def test_complains_of_what_went_otherwise(self):
        for name, (record, complaint) in FAILURES.items():
            with self.subTest(name):
                status, said = summary_of(record)
                self.assertEqual(status, 1, said)
                self.assertIn("\n" + complaint, said)


if __name__ == "__main__":
    unittest.main()

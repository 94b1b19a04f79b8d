# SPDX-License-Identifier: Apache-2.0
"""What ./dev demo took down, and a story that is told of it."""

import json
import tomllib
from dataclasses import dataclass, field
from pathlib import Path


class Record:
    """NAME.json are answers of "qlctl --json" and of the simulated devices themselves, NAME.txt is what was shown."""

    def __init__(self, scenario, folder):
        self.scenario = tomllib.loads(Path(scenario).read_text(encoding="utf-8"))
        self.beside_scenario = Path(scenario).parent
        self.folder = Path(folder)

    def shown(self, name):
        # A screen may be cut at its end, in the middle of a character.
        return (self.folder / f"{name}.txt").read_text(encoding="utf-8", errors="replace")

    def answer(self, name):
        return json.loads((self.folder / f"{name}.json").read_text(encoding="utf-8"))

    def answers(self, file):
        """The JSON objects of a file, one on a line; other lines are messages."""
        text = (self.folder / file).read_text(encoding="utf-8")
        return [json.loads(line) for line in text.splitlines() if line.startswith("{")]

    def device(self, name, moment="simulated"):
        """A simulated device's own status at the end, or with "simulated-first" at the beginning."""
        return next(device for device in self.answer(moment)["devices"] if device["device"] == name)

    def planned(self, kind):
        """The devices of a kind in the scenario."""
        return [device for device in self.scenario["device"] if device["kind"] == kind]


@dataclass
class Story:
    title: str
    simulated: str = ""
    seen: str = ""
    faults: list = field(default_factory=list)

    def expect(self, holds, fault):
        if not holds:
            self.faults.append(fault)


def listing(values):
    """1, 2 and 3"""
    values = [str(value) for value in values]
    if len(values) < 2:
        return "".join(values) or "none"
    return f"{', '.join(values[:-1])} and {values[-1]}"


def counted(number, thing):
    return f"{number} {thing}{'' if number == 1 else 's'}"

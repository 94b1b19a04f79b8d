#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""A Java example compiles without a warning, runs on a Windows JVM, succeeds, and prints what its readers are told.

usage: check_java_example.py JVM BUILD_FOLDER WORK_FOLDER NAME

JVM and BUILD_FOLDER as for run_junit.py. The example is examples/java/NAME.java; each line of expected/NAME.txt is a
pattern for the line of the output at its place. What it needs of the simulated machine is told below.

The exit status is 77 when there is nothing to run it with: no JVM, or no Java library.
"""
import argparse
import dataclasses
import glob
import os
import pathlib
import shutil
import subprocess
import sys
import threading
import uuid

from run_junit import JAVA, ROOT, SKIPPED, seen_by_windows

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "interface"))
from check_example import faults  # noqa: E402
from report import report  # noqa: E402

RUN = ROOT / "sim" / "machine" / "run"
# Far longer than anything takes on a busy machine; what was started ends then.
PATIENCE = 100


@dataclasses.dataclass
class Play:
    """What somebody else does while an example runs. {near} and {far} are the ports of a serial cable."""
    # Turns at what all programs of the machine see; see tests/java/aid.
    turns: tuple = ()
    # The devices that are played; none need be for the machine's own libraries, which fill their records themselves.
    scenario: str = ""
    arguments: tuple = ()
    # As soon as the example says a line that begins so, a command for the simulated devices.
    steps: tuple = ()


SCANNER = """
[[device]]
kind = "probe"

[[device]]
kind = "intermec-scanner"
name = "scanner"
"""

CARD_READER = f"""
[[device]]
kind = "card-reader"
name = "reader"
serial = "B30A5C7"
mask = "*"
card_files = ['{seen_by_windows(ROOT / "sim" / "scenarios" / "wallet.toml")}']
"""

RFID_READER = """
[[device]]
kind = "rfid-reader"
name = "rfid"
power = 27

[[device.tag]]
epc = "3034257BF7194E4000001A85"
tid = "E280116020007F3C88A80001"
signal = -48

[[device.tag]]
epc = "30143639F84191AD22901607"
signal = -74
"""

RECEIVER = """
start = 2026-05-12T08:30:00Z

[[device]]
kind = "gps"
name = "gps"
port = "{far}"
cold_start = 1.0
only_2d = 0.0
position_noise = 0.0

[device.track]
altitude = 171
start = [48.2082, 16.3738]
"""

PLAYS = {
    "BarcodeScan": Play(
        turns=("turn scanner-emulator shared",), scenario=SCANNER, arguments=("2",),
        steps=(("Intermec", "scanner scan 4006381333931 EAN_13"), ("Code: ", "scanner scan RACK-0042 Code39"))),
    "CardSwipe": Play(
        turns=("mutex Global\\QuarlinTestCardReader",), scenario=CARD_READER, arguments=("2",),
        steps=(("Swipe", "reader swipe visa encrypted"), ("  Track 3", "reader swipe scratched clear"))),
    "UhfInventory": Play(turns=("mutex Global\\QuarlinTestRfidReader",), scenario=RFID_READER),
    "GpsPosition": Play(
        turns=("mutex Global\\QuarlinTestCable3 Global\\QuarlinTestCable5",), scenario=RECEIVER,
        arguments=("{near}", "2")),
}


class Program:
    """A program of the simulated machine."""

    def __init__(self, environment, *command):
        self._running = subprocess.Popen([str(RUN), *map(str, command)], env=environment, text=True, bufsize=1,
                                         encoding="utf-8", errors="replace", stdin=subprocess.PIPE,
                                         stdout=subprocess.PIPE, stderr=subprocess.STDOUT)

    def lines(self):
        for line in self._running.stdout:
            yield line.rstrip("\r\n")

    def tell(self, line):
        self._running.stdin.write(line + "\n")
        self._running.stdin.flush()

    def end(self):
        """Says that nothing more comes; the exit status."""
        self._running.stdin.close()
        self._running.stdout.read()
        return self._running.wait()

    def kill(self):
        if self._running.poll() is None:
            self._running.kill()


class Stage:
    """Everything that runs beside the example."""

    def __init__(self, build, work):
        self._build = build
        self._work = work
        self._pipe = f"qlsim-{work.name}-{uuid.uuid4().hex[:8]}"
        # The simulated devices of this run are its own, where they are records in memory and not devices of the system.
        self._environment = os.environ | {"QLSIM_INSTANCE": self._pipe, "QLSIM_MODEL": "JR-56EXAMPLE"}
        self._programs = []
        self.ports = {}

    def start(self, *command):
        self._programs.append(Program(self._environment, *command))
        return self._programs[-1]

    def take(self, turns):
        aid = self.start(self._build / "tests" / "java_test_aid.exe")
        for turn in turns:
            aid.tell(turn)
            answer = next(aid.lines(), "nothing")
            if not answer.startswith("ok"):
                raise RuntimeError(f"{turn}: {answer}")
            if "Cable" in turn:
                near = 3 + 2 * int(answer.split()[1])
                self.ports = {"near": str(near), "far": f"COM{near + 1}"}
        return aid

    def play(self, scenario):
        file = self._work / "scenario.toml"
        text = scenario
        for name, port in self.ports.items():
            text = text.replace(f"{{{name}}}", port)
        file.write_text(text, encoding="utf-8")
        simulator = self.start(self._build / "sim" / "qlsim.exe", seen_by_windows(file), "--pipe", self._pipe)
        said = []
        for line in simulator.lines():
            said.append(line)
            if "commands on" in line:
                return simulator
        raise RuntimeError("the simulator does not play: " + " ".join(said))

    def command(self, words):
        done = subprocess.run([RUN, self._build / "sim" / "qlsim-ctl.exe", "--pipe", self._pipe, *words.split()],
                              env=self._environment, stdin=subprocess.DEVNULL, capture_output=True, text=True,
                              check=False)
        if done.returncode != 0:
            raise RuntimeError(f"{words}: {done.stdout}{done.stderr}")

    def kill_all(self):
        for program in self._programs:
            program.kill()


def the_jar():
    found = [jar for jar in glob.glob(str(JAVA / "quarlin-*.jar"))
             if not jar.endswith(("-sources.jar", "-javadoc.jar"))]
    if len(found) != 1:
        raise RuntimeError(f"not one Java library: {found}")
    return pathlib.Path(found[0])


def compile_example(name, classes):
    home = os.environ.get("JAVA_HOME")
    subprocess.run([pathlib.Path(home) / "bin" / "javac" if home else "javac", "--release", "8", "-Xlint:all,-options",
                    "-Werror", "-proc:none", "-encoding", "UTF-8", "-cp", the_jar(), "-d", classes,
                    ROOT / "examples" / "java" / f"{name}.java"], check=True)


def example_command(jvm, build, classes, name, arguments):
    library = pathlib.Path(os.environ.get("QLSIM_LIBRARY_DIR") or build / "bin")
    return [jvm / "bin" / "java.exe", "-XX:ActiveProcessorCount=2", "--enable-native-access=ALL-UNNAMED",
            f"-Dcom.norvane.quarlin.library={seen_by_windows(library)}",
            "-cp", f"{seen_by_windows(the_jar())};{seen_by_windows(classes)}", name, *arguments]


def run_example(stage, play, command):
    """The lines that it says, and its exit status."""
    steps = list(play.steps)
    example = stage.start(*command)
    said = []
    for line in example.lines():
        print(line, flush=True)
        said.append(line)
        if steps and line.startswith(steps[0][0]):
            stage.command(steps.pop(0)[1])
    return said, example.end()


def check(stage, play, command):
    aid = stage.take(play.turns) if play.turns else None
    simulator = stage.play(play.scenario) if play.scenario else None
    said, status = run_example(stage, play, [word.format(**stage.ports) if "{" in word else word for word in command])
    if simulator:
        stage.command("quit")
        simulator.end()
    if aid:
        aid.end()
    return said, status


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("jvm", type=pathlib.Path)
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("work", type=pathlib.Path)
    parser.add_argument("name")
    given = parser.parse_args()

    for needed in (given.jvm / "fetched", JAVA / "built"):
        if not needed.exists():
            print(f"SKIPPED: there is no {needed}; ./dev test makes it where the network allows")
            return SKIPPED

    shutil.rmtree(given.work, ignore_errors=True)
    given.work.mkdir(parents=True)
    compile_example(given.name, given.work)
    play = PLAYS.get(given.name, Play())
    command = example_command(given.jvm, given.build, given.work, given.name, play.arguments)
    stage = Stage(given.build, given.work)
    watchdog = threading.Timer(PATIENCE, stage.kill_all)
    watchdog.start()
    try:
        said, status = check(stage, play, [str(word) for word in command])
    finally:
        watchdog.cancel()
        stage.kill_all()
    expected = (HERE / "expected" / f"{given.name}.txt").read_text(encoding="utf-8").splitlines()
    found = list(faults(expected, said))
    if status:
        found.append(f"exit status {status}")
    return report(found, given.name)


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs the Java library's tests with devices (tagged "machine") on a Windows JVM on the simulated machine.

usage: run_junit.py JVM BUILD_FOLDER REPORTS [--check-jni] [--dll-in-jar] [--only CLASSES]

JVM is a folder with bin/java.exe, BUILD_FOLDER one that CMake built for Windows. QLSIM_LIBRARY_DIR names another folder to
take qlsdk.dll from; --dll-in-jar has the Java library find it in its jar and nowhere else. CLASSES is a regular expression
for the names of test classes.

The exit status is 77 when there is nothing to run them with: no JVM, or no Java library.
"""
import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys
import threading
import uuid
import zipfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
JAVA = ROOT / "build" / "java"
SKIPPED = 77
# A JVM that dies of native code may not end under Wine.
DYING = re.compile(r"A fatal error has been detected by the Java Runtime Environment|FATAL ERROR in native method")
LAST_WORDS = 20  # seconds
# What -Xcheck:jni has to say of native code. It goes on after the first two.
COMPLAINTS = re.compile(r"WARNING in native method|WARNING: JNI local refs|FATAL ERROR in native method")


def seen_by_windows(path):
    return "Z:" + str(path.resolve()).replace("/", "\\")


def jar_with(dll, folder):
    """The jar as ./dev package makes it."""
    built, = JAVA.glob("quarlin-*[0-9].jar")
    jar = folder / "with_dll.jar"
    shutil.copyfile(built, jar)
    with zipfile.ZipFile(jar, "a", zipfile.ZIP_DEFLATED) as file:
        file.write(dll, "native/windows-x86_64/qlsdk.dll")
    return jar


def library_and_its_place(arguments, reports):
    """Where the Java library is, and the JVM's options that tell it where the DLL is."""
    folder = pathlib.Path(os.environ.get("QLSIM_LIBRARY_DIR") or arguments.build / "bin")
    if arguments.dll_in_jar:
        # Otherwise the path of programs, on which the machine has the DLL.
        return jar_with(folder / "qlsdk.dll", reports), [f"-Djava.library.path={seen_by_windows(reports)}"]
    return JAVA / "classes", [f"-Dcom.norvane.quarlin.library={seen_by_windows(folder)}"]


def command_line(arguments, reports):
    library, place_of_dll = library_and_its_place(arguments, reports)
    classes = [JAVA / "launcher" / "junit-platform-console-standalone.jar", library, JAVA / "test-classes"]
    return [
        ROOT / "sim" / "machine" / "run", arguments.jvm / "bin" / "java.exe",
        # Wine does not say how many processors there are, and the JVM says so each time unless it is told.
        "-XX:ActiveProcessorCount=2",
        "--enable-native-access=ALL-UNNAMED",
        *(["-Xcheck:jni"] if arguments.check_jni else []),
        "-Xmx512m",
        f"-XX:ErrorFile={seen_by_windows(reports)}\\jvm_error_%p.log",
        *place_of_dll,
        f"-Dqlsim.bin={seen_by_windows(arguments.build / 'sim')}",
        f"-Dqlsim.scenarios={seen_by_windows(ROOT / 'sim' / 'scenarios')}",
        "-cp", ";".join(seen_by_windows(path) for path in classes),
        "org.junit.platform.console.ConsoleLauncher", "execute",
        f"--scan-classpath={seen_by_windows(JAVA / 'test-classes')}",
        f"--include-classname={arguments.only}",
        "--include-tag=machine",
        "--disable-banner", "--disable-ansi-colors", "--details=testfeed", "--fail-if-no-tests",
        f"--reports-dir={seen_by_windows(reports)}",
    ]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("jvm", type=pathlib.Path)
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("reports", type=pathlib.Path)
    parser.add_argument("--check-jni", action="store_true")
    parser.add_argument("--dll-in-jar", action="store_true")
    parser.add_argument("--only", default=".*")
    arguments = parser.parse_args()

    for needed in (arguments.jvm / "fetched", JAVA / "built"):
        if not needed.exists():
            print(f"SKIPPED: there is no {needed}; ./dev test makes it where the network allows")
            return SKIPPED

    shutil.rmtree(arguments.reports, ignore_errors=True)
    arguments.reports.mkdir(parents=True)
    # The simulated devices of this run are its own, where they are records in memory and not devices of the system.
    environment = os.environ | {"QLSIM_INSTANCE": f"java-{uuid.uuid4().hex[:12]}"}
    running = subprocess.Popen(command_line(arguments, arguments.reports), env=environment, text=True, errors="replace",
                               stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    complaints = 0
    for line in running.stdout:
        print(line, end="", flush=True)
        if DYING.search(line):
            threading.Timer(LAST_WORDS, running.kill).start()
        complaints += COMPLAINTS.search(line) is not None
    status = running.wait()
    for log in arguments.reports.glob("jvm_error_*.log"):
        print(log.read_text(errors="replace")[:8000])
        status = status or 1
    if arguments.check_jni:
        print(f"-Xcheck:jni complained {complaints} times")
    return status or (1 if complaints else 0)


if __name__ == "__main__":
    sys.exit(main())

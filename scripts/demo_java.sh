# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# ./dev demo --java: the examples of examples/java on a Windows JVM, half a minute of them. How things are shown is in
# demo.sh.

readonly java_demo_release=25
readonly java_demo_classes=build/java-examples
readonly -a java_demo_examples=(examples/java/{BarcodeScan,GpsPosition,ErrorHandling}.java)

seen_by_windows() {
    local path=Z:$PWD/$1
    printf '%s\n' "${path//\//\\}"
}

# Java on the simulated machine, with the library and the examples on its class path.
java() {
    on_machine "build/jvm/$java_demo_release/bin/java.exe" -XX:ActiveProcessorCount=2 \
        --enable-native-access=ALL-UNNAMED \
        "-Dcom.norvane.quarlin.library=$(seen_by_windows build/windows/bin)" \
        -cp "$(seen_by_windows build/java/classes);$(seen_by_windows "$java_demo_classes")" "$@"
}

compile_java_examples() {
    rm -rf "$java_demo_classes"
    "${JAVA_HOME:+$JAVA_HOME/bin/}javac" --release 8 -Xlint:-options -proc:none -cp build/java/classes \
        -d "$java_demo_classes" "${java_demo_examples[@]}"
}

introduce_java() {
    printf '\n%s\n' "A portable computer with all of its devices, simulated, and programs of examples/java on a Windows JVM, which
know the devices through the Java library and qlsdk.dll alone. qlsim-ctl is the hand that holds up a code and plugs in
a receiver. They stand for

  java        sim/machine/run build/jvm/$java_demo_release/bin/java.exe -cp build/java/classes;$java_demo_classes …
  qlsim-ctl   sim/machine/run build/windows/sim/qlsim-ctl.exe --pipe $demo_pipe"
}

# scan_into_java TEXT SYMBOLOGY: the code before the engine, and what the program says of it.
scan_into_java() {
    show 0 qlsim-ctl intermec scan "$@"
    follow "Code: $1,"
    pause 1.5
}

act_java_scans() {
    act java-scans "scans arrive in Java"
    say "BarcodeScan opens the scanner, adds a listener and waits for three codes:"
    start java BarcodeScan 3
    follow "Intermec"
    scan_into_java 4006381333931 EAN_13
    scan_into_java https://example.com/parcel/7 QR
    scan_into_java RACK-0042 Code39
    finish 0
    pause 1
}

act_java_gps() {
    act java-gps "a position in Java"
    say "A receiver is plugged in, in a patrol car that drives round the inner city of Vienna. GpsPosition waits for a
fix, four seconds, and shows five positions:"
    show 0 qlsim-ctl gps plug
    await "the receiver's port" receiver_is_there
    show 0 java GpsPosition "$gps_port" 5
    pause 1
}

act_java_errors() {
    act java-errors "failures in Java"
    say "One class of exceptions with a code above, Java's own classes below:"
    show 0 java ErrorHandling
    pause 1
}

demo_java() {
    plan 7
    java_or_die
    step "Compiling the examples" compile_java_examples
    build_preset windows qlsdk qlsim qlsim_ctl "${machine_libraries[@]}"
    machine_up
    begin_show
    introduce_java
    demo_act_count=3
    act_java_scans
    act_java_gps
    act_java_errors
    printf '\n'
    end_show
    printf '\n%s\n' "The programs are in examples/java; docs/java.md is the tour."
}

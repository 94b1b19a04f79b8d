# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# What ./dev demo shows, act by act. Each command line stands there as a reader would type it.

readonly carton=3034257BF7194E4000001A85
readonly pallet=3034257BF7194E4000001A86
readonly gps_port=7

# demo_acts SECONDS: all of it; the last act lasts so long, or until Ctrl-C.
demo_acts() {
    demo_act_count=6
    act_devices
    act_light
    act_cards
    act_scanners
    act_rfid
    act_gps "$1"
}

device_four() {
    qlctl device list | grep -E '^(Device| +4 )'
}

act_devices() {
    act devices "built-in devices and batteries"
    say "What is built in, what has power, and what the BIOS lets through:"
    show 0 qlctl device list
    note devices qlctl device list --json
    pause 2

    say "Device 4 has no power. Somebody switches it on, and whoever asks now sees that:"
    show 0 qlsim-ctl probe device 4 power 1
    announce "qlctl device list | grep -E '^(Device| +4 )'"
    perform 0 device_four
    note devices-after qlctl device list --json
    pause 1

    say "Both batteries, in the units of the machine:"
    show 0 qlctl device battery
    note batteries qlctl device battery --json
    pause 3
}

# Asks the lamp until it is off, and tells the seconds that are left when they have changed.
count_down() {
    local state left='' told='' give_up=$((SECONDS + 15))
    while [[ $left != 0 ]]; do
        ((SECONDS < give_up)) || die "the light does not go off"
        state=$(qlsim-ctl light status) || die "the light does not tell its state"
        [[ $state =~ \"timer\":([0-9]+) ]] || die "the light tells no time: $state"
        left=${BASH_REMATCH[1]}
        if [[ $left != "$told" ]]; then
            printf '%s\n' "$state" >>"$demo_record/lamp.json"
            [[ $left == 0 ]] && printf 'off\n' || printf '%s s left\n' "$left"
            told=$left
        fi
        let_time_pass 0.1
    done
}

act_light() {
    act light "the camera light"
    say "On until it is switched off, for which its timer has the number 255:"
    show 0 qlctl light on --json
    pause 0.5
    say "And off:"
    show 0 qlctl light off --json
    pause 0.5
    say "On for three seconds. The lamp counts them by itself, the application has ended meanwhile:"
    show 0 qlctl light timer 3 --json
    announce "qlsim-ctl light status"
    count_down
    pause 0.5
}

noter_has_begun() {
    [[ -s $demo_record/swipes.log ]] || has_ended "$cards_noter"
}

# swipe CARD FORM: a swipe, and what the application makes of it. Track 3 is the last that it tells of.
swipe() {
    show 0 qlsim-ctl reader swipe "$@"
    follow "  Track 3"
    pause 2
}

act_cards() {
    local cards_noter
    act cards "the card reader"
    say "A keyboard and a PIN pad hang on the same bus. One device on it is a card reader:"
    show 0 qlctl card list
    note readers qlctl card list --json
    pause 2

    say "An application waits for cards. It masks account numbers unless it is told to show them:"
    # A second one takes the same swipes down for the summary.
    qlctl card watch --json >"$demo_record/swipes.json" 2>"$demo_record/swipes.log" &
    cards_noter=$!
    await "the second application that waits for swipes" noter_has_begun
    start qlctl card watch
    # Its first line says that it waits, or why not.
    follow "qlctl:"
    say "A bank card, sent in clear, as readers without a key do:"
    swipe visa clear
    say "The same card, encrypted by the reader: the application gets cipher bytes, and masked tracks to show:"
    swipe visa encrypted
    say "A scratched card. Its first track cannot be decoded, so the swipe is not valid:"
    swipe scratched clear
    say "Somebody pulls the plug while the application waits, which notices it and ends:"
    show 0 qlsim-ctl reader unplug
    finish 7
    await "the end of the second application that waited for swipes" has_ended "$cards_noter"
    pause 1
    say "And puts it back:"
    show 0 qlsim-ctl reader plug
    show 0 qlctl card list
    note readers-after qlctl card list --json
    pause 1
}

# hold_up SCANNER TEXT SYMBOLOGY [EDITED]: a code before the engine, and for the summary what the application has to
# get: the text, or the edited text.
hold_up() {
    show 0 qlsim-ctl "$1" scan "$2" "$3"
    printf '%s\t%s\t%s\t%s\n' "$1" "$3" "$2" "${4:-$2}" >>"$demo_record/codes.txt"
}

act_scanners() {
    local isbn=978-3-16-148410-0
    act scanners "the barcode scanners"
    say "This computer has an Intermec engine built in:"
    show 0 qlctl barcode list
    start qlctl barcode watch --count 3
    follow "qlctl:"
    hold_up intermec 4006381333931 EAN_13
    follow "  Bytes"
    pause 1
    hold_up intermec https://example.com/parcel/7 QR
    follow "  Bytes"
    pause 1
    hold_up intermec RACK-0042 Code39
    finish 0
    note scanner-intermec qlctl barcode firmware --json
    pause 1.5

    say "A rule on trial, which takes the hyphens out of a number: the same code is read without it and with it:"
    start qlctl barcode edit delete -
    follow "qlctl: hold a code"
    hold_up intermec "$isbn" Code128
    follow "qlctl: hold the same"
    hold_up intermec "$isbn" Code128 "${isbn//-/}"
    finish 0
    pause 1.5

    say "The same application on another computer, which has a Honeywell engine:"
    show 0 qlsim-ctl probe device 1 available off
    show 0 qlsim-ctl probe device 15 available on
    show 0 qlctl barcode list
    say "Somebody does not want it to read PDF417, and GS1 codes shall have a bar between their fields:"
    show 0 qlctl barcode symbology disable PDF417
    start qlctl barcode watch --count 2 --replace '\x1D=|'
    follow "qlctl:"
    hold_up honeywell '10A7\x1D37144' EAN_128 '10A7|37144'
    follow "  Bytes"
    pause 1
    show 1 qlsim-ctl honeywell scan PALLET-0007 PDF417
    hold_up honeywell CARTON-0001 DataMatrix
    finish 0
    note scanner-honeywell qlctl barcode firmware --json
    pause 1.5
    # The first computer again, for all that follows.
    qlsim-ctl probe device 1 available on >/dev/null
    qlsim-ctl probe device 15 available off >/dev/null
}

act_rfid() {
    act rfid "the UHF RFID reader"
    note tags-first qlsim-ctl rfid tags
    say "The tags in the field of the reader, and how strong they are heard:"
    show 0 qlctl rfid inventory
    note inventory qlctl rfid inventory --json
    pause 1.5

    say "The first is on a carton. Its user memory, eight words of two bytes:"
    show 0 qlctl rfid read --epc "$carton" --bank user --count 8
    note carton-first qlctl rfid read --epc "$carton" --bank user --count 8 --json
    pause 1
    say "Three words are written, the letters OPENED, and read back:"
    show 0 qlctl rfid write --epc "$carton" --bank user --data 4F50454E4544
    show 0 qlctl rfid read --epc "$carton" --bank user --count 8
    note carton qlctl rfid read --epc "$carton" --bank user --count 8 --json
    pause 1.5

    say "The second is on a pallet and locked. Without its password it refuses:"
    show 8 qlctl rfid write --epc "$pallet" --bank user --data 4C4F41444544
    note pallet-refused qlctl rfid read --epc "$pallet" --bank user --count 8 --json
    pause 1
    say "With its password it obeys:"
    show 0 qlctl rfid write --epc "$pallet" --bank user --data 4C4F41444544 --password 1A2B3C4D
    note pallet qlctl rfid read --epc "$pallet" --bank user --count 8 --json
    pause 1.5

    say "With less power the tag that is far away is not heard any more:"
    show 0 qlctl rfid power 19
    show 0 qlctl rfid inventory
    note power qlctl rfid power --json
    note inventory-weak qlctl rfid inventory --json
    pause 1.5

    say "How the reader asks for tags, after a change of two parameters:"
    show 0 qlctl rfid query --miller 3 --sensitivity -60
    note query qlctl rfid query --json
    note tags qlsim-ctl rfid tags
    pause 1.5
}

receiver_is_there() {
    [[ -e ${QLSIM_MACHINE_DIR:-build/machine}/ports/COM$gps_port ]]
}

# act_gps SECONDS: until Ctrl-C when it is empty.
act_gps() {
    local status
    local -a watch=(gps watch --port "$gps_port")
    $on_terminal || watch+=(--interval 1)
    [[ -z $1 ]] || watch+=(--timeout "$1")
    act gps "the GPS receiver"
    local how_long="$1 seconds of the drive:"
    [[ -n $1 ]] || how_long="Ctrl-C ends the watching:"
    say "A receiver is plugged in, in a patrol car that drives round the inner city of Vienna. It needs four seconds to a
fix. $how_long"
    pause 2
    show 0 qlsim-ctl gps plug
    await "the receiver's port" receiver_is_there
    announce qlctl "${watch[@]}"
    if $on_terminal; then
        clear_screen
        watch+=(--redraw always)
    fi
    # Ctrl-C ends the watching, not the demo.
    trap 'printf "\n"' INT
    set +e
    qlctl "${watch[@]}" | tee --append --ignore-interrupts "$demo_act"
    status=${PIPESTATUS[0]}
    set -e
    trap 'exit 130' INT
    # 9: stopped before the receiver had sent anything.
    [[ $status != 9 ]] || exit 130
    [[ $status == 0 ]] || die "qlctl ended with status $status"
}

# The picture is as tall as the screen and wipes it: what was shown before moves up, where it can be read.
clear_screen() {
    local row
    LINES=$(stty size </dev/tty | cut -d' ' -f1) || LINES=24
    export LINES
    for ((row = 0; row < LINES; row++)); do
        printf '\n'
    done
}

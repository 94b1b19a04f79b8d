# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# What ./dev demo shows, act by act. Each command line stands there as a reader would type it.

readonly carton=3034257BF7194E4000001A85
readonly pallet=3034257BF7194E4000001A86
readonly gps_port=7

# demo_acts SECONDS: all of it; the last act lasts so long, or until Ctrl-C.
demo_acts() {
    demo_act_count=5
    act_devices
    act_light
    act_cards
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

# watch_cards: an application that waits for swipes; a second one takes the same swipes down for the summary.
watch_cards() {
    qlctl card watch --json >"$demo_record/swipes.json" 2>"$demo_record/swipes.log" &
    cards_noter=$!
    await "the second application that waits for swipes" noter_has_begun
    mkfifo "$demo_record/cards.fifo"
    qlctl card watch >"$demo_record/cards.fifo" 2>&1 &
    cards_watcher=$!
    exec {watching_cards}<"$demo_record/cards.fifo"
    rm "$demo_record/cards.fifo"
    # Its first line says that it waits, or why not.
    follow_cards "qlctl:"
}

# follow_cards BEGINNING: shows what the waiting application says, up to the line that begins like this.
follow_cards() {
    local line
    while IFS= read -r -t 30 -u "$watching_cards" line; do
        printf '%s\n' "$line" | hand_on
        demo_shown_at=$EPOCHREALTIME
        [[ $line != "$1"* ]] || return 0
    done
    die "the application that waits for swipes did not say what it should: $1"
}

# swipe CARD FORM: a swipe, and what the application makes of it. Track 3 is the last that it tells of.
swipe() {
    show 0 qlsim-ctl reader swipe "$@"
    follow_cards "  Track 3"
    pause 2
}

has_ended() {
    ! kill -0 "$1" 2>/dev/null
}

# What is left to say when the reader has gone, and how both applications ended.
end_of_cards() {
    local line status=0
    while IFS= read -r -t 30 -u "$watching_cards" line; do
        printf '%s\n' "$line" | hand_on
    done
    exec {watching_cards}<&-
    await "the end of the application that waited for swipes" has_ended "$cards_watcher"
    wait "$cards_watcher" || status=$?
    [[ $status == 7 ]] || die "the application ended with status $status and not with 7 when its reader had gone"
    await "the end of the second application that waited for swipes" has_ended "$cards_noter"
}

act_cards() {
    local watching_cards cards_noter cards_watcher
    act cards "the card reader"
    say "A keyboard and a PIN pad hang on the same bus. One device on it is a card reader:"
    show 0 qlctl card list
    note readers qlctl card list --json
    pause 2

    say "An application waits for cards. It masks account numbers unless it is told to show them:"
    announce "qlctl card watch &"
    watch_cards
    say "A bank card, sent in clear, as readers without a key do:"
    swipe visa clear
    say "The same card, encrypted by the reader: the application gets cipher bytes, and masked tracks to show:"
    swipe visa encrypted
    say "A scratched card. Its first track cannot be decoded, so the swipe is not valid:"
    swipe scratched clear
    say "Somebody pulls the plug while the application waits, which notices it and ends:"
    show 0 qlsim-ctl reader unplug
    end_of_cards
    pause 1
    say "And puts it back:"
    show 0 qlsim-ctl reader plug
    show 0 qlctl card list
    note readers-after qlctl card list --json
    pause 1
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

# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# What up, run and down have in common; sourced by them.

here=$(cd "${BASH_SOURCE[0]%/*}" && pwd)
source_dir=${here%/sim/machine}
# One machine serves every build folder of this checkout.
machine=${QLSIM_MACHINE_DIR:-$source_dir/build/machine}
# There may be several, told apart by number: the first is the one above, the others lie beside it.
if [[ ${QLSIM_MACHINE:-1} != 1 ]]; then
    machine+=-$QLSIM_MACHINE
fi

export WINEPREFIX=$machine/prefix
export WINELOADER=/usr/lib/wine/wine64
export WINEDEBUG=${WINEDEBUG:--all}
# serialui: ours. mscoree, mshtml: absent, so that nobody is asked to install them. winemenubuilder: not wanted.
export WINEDLLOVERRIDES="serialui=n;mscoree,mshtml=;winemenubuilder.exe=d"

# The stand-ins that are installed into the prefix.
stand_ins=(serialui.dll qlsim_wbem.dll)
# Drivers and what belongs to them: installed as well, and the prefix has to start again to take new ones.
drivers=(qlsim_hidbus.sys qlsim_hid.sys qlsim_hid.inf)

# Where they go, by their extension.
declare -A installed_in=([dll]=system32 [sys]=system32/drivers [inf]=inf)

# set_installed NAME: sets `installed` to the place of a stand-in or a driver in the prefix.
set_installed() {
    installed=$WINEPREFIX/drive_c/windows/${installed_in[${1##*.}]}/$1
}

# process_runs PID_FILE WORD: whether the process noted in the file is alive and is the one meant.
process_runs() {
    local pid words=()
    [[ -r $1 ]] && read -r pid <"$1" && [[ -r /proc/$pid/cmdline ]] || return 1
    mapfile -d '' words <"/proc/$pid/cmdline" 2>/dev/null || return 1
    [[ ${words[*]} == *"$2"* ]]
}

# A pid file is NAME.starting until `up` has found its process ready for use; then it is NAME.pid.

# The keeper alone does not tell: it outlives its server for a while when that has died.
prefix_is_up() {
    process_runs "$machine/server.pid" wineserver && process_runs "$machine/keeper.pid" notepad
}

machine_is_up() {
    prefix_is_up && process_runs "$machine/cable.pid" serial_cable.py
}

# The pid of the prefix's server, which works in a folder named after the prefix's device and inode.
server_pid() {
    local folder pid
    folder=$(stat -c '%D %i' "$WINEPREFIX")
    folder=$(printf 'server-%s-%x' "${folder% *}" "${folder#* }")
    for pid in /proc/[0-9]*; do
        if [[ $(readlink "$pid/cwd") == */"$folder" ]]; then
            echo "${pid#/proc/}"
            return
        fi
    done 2>/dev/null
}

# stand_ins_are_current BUILD_DIR: false when the build folder holds a newer stand-in or driver than the prefix.
stand_ins_are_current() {
    local name installed
    for name in "${stand_ins[@]}" "${drivers[@]}"; do
        set_installed "$name"
        if [[ $1/sim/$name -nt $installed ]]; then
            return 1
        fi
    done
}

stop_cables() {
    local file pid
    for file in "$machine"/cable.starting "$machine"/cable.pid; do
        if process_runs "$file" serial_cable.py; then
            read -r pid <"$file"
            kill "$pid"
            while process_runs "$file" serial_cable.py; do
                sleep 0.02
            done
        fi
        rm -f "$file"
    done
}

# Ends every program on the machine.
stop_prefix() {
    if [[ -d $WINEPREFIX ]]; then
        wineserver -k 2>/dev/null || true
        wineserver -w
    fi
    rm -f "$machine"/keeper.starting "$machine"/keeper.pid "$machine"/server.pid
}

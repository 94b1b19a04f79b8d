# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# Finds out which Debian packages are missing and installs them.

needed_packages() {
    sed -e 's/#.*//' -e 's/[[:space:]].*//' -e '/^$/d' scripts/packages.txt
}

missing_packages() {
    local -a needed
    mapfile -t needed < <(needed_packages)
    # An unknown package makes dpkg-query fail and leaves its line out, which is what is asked.
    comm -23 <(printf '%s\n' "${needed[@]}" | sort) \
        <(dpkg-query -W -f='${Package} ${db:Status-Status}\n' "${needed[@]}" 2>/dev/null |
            awk '$2 == "installed" { print $1 }' | sort -u)
}

install_packages() {
    export DEBIAN_FRONTEND=noninteractive
    apt-get -o DPkg::Lock::Timeout=300 -o Dpkg::Use-Pty=0 install --yes --no-install-recommends "$@"
}

# setup_packages [--quiet]: says nothing when nothing is missing.
setup_packages() {
    [[ -z ${QUARLIN_SKIP_SETUP:-} ]] || return 0
    if ! command -v dpkg-query >/dev/null; then
        die "this is not a Debian system. Install the equivalents of these packages yourself and set QUARLIN_SKIP_SETUP=1:
$(needed_packages | paste -sd ' ')"
    fi
    local -a missing
    mapfile -t missing < <(missing_packages)
    if [[ ${#missing[@]} == 0 ]]; then
        [[ ${1:-} == --quiet ]] || printf 'Nothing is missing.\n'
        return 0
    fi
    if [[ $EUID != 0 ]]; then
        printf 'Packages are missing. Run this, then ./dev again:\n\n' >&2
        printf '  sudo apt-get update && sudo apt-get install --no-install-recommends %s\n\n' "${missing[*]}" >&2
        exit 1
    fi
    printf 'Setting up: %s\n' "${missing[*]}"
    plan 2
    step "Updating Debian's package lists" apt-get -o DPkg::Lock::Timeout=300 update
    step "Installing ${#missing[@]} packages" install_packages "${missing[@]}"
    mapfile -t missing < <(missing_packages)
    [[ ${#missing[@]} == 0 ]] || die "still missing after the installation: ${missing[*]}"
    forget_steps
}

# shellcheck shell=bash
# What the scripts share. Source it after `set -euo pipefail`.

repository=$(cd -- "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")/.." && pwd)
current_step=

fail() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# step TITLE COMMAND [ARGUMENT...]: names what runs, so that a failure tells where it happened.
step() {
    current_step=$1
    shift
    printf '\n== %s\n' "$current_step"
    "$@"
    current_step=
}

report_failed_step() {
    local status=$?
    if ((status != 0)) && [[ -n $current_step ]]; then
        printf '\n%s: failed at: %s\n' "${0##*/}" "$current_step" >&2
    fi
}
trap report_failed_step EXIT

# Runs a command quietly; what it printed is shown only when it fails.
quietly() {
    local output status=0
    output=$("$@" 2>&1 </dev/null) || status=$?
    if ((status != 0)); then
        printf '%s\n' "$output" >&2
    fi
    return "$status"
}

# The lines of scripts/debian-packages.txt of which no package is installed; alternatives as "one|other".
missing_packages() {
    local names name
    sed -e 's/#.*//' -e 's/[[:space:]]//g' -e '/^$/d' "$repository/scripts/debian-packages.txt" |
        while read -r names; do
            for name in ${names//|/ }; do
                if [[ $(dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null) == installed ]]; then
                    continue 2
                fi
            done
            printf '%s\n' "$names"
        done
}

# available_packages ALTERNATIVES...: of each "one|other" the first that apt knows, or the last.
available_packages() {
    local names name
    for names in "$@"; do
        for name in ${names//|/ }; do
            if [[ $names == *'|'* && -n $(apt-cache madison "$name") ]]; then
                break
            fi
        done
        printf '%s\n' "$name"
    done
}

# Installs what scripts/debian-packages.txt lists and this machine lacks; does nothing when it lacks nothing.
install_missing_packages() {
    command -v dpkg-query >/dev/null ||
        fail "this needs Debian 12 or a system like it; elsewhere, install what scripts/debian-packages.txt lists" \
            "and use the CMake presets"
    local missing
    mapfile -t missing < <(missing_packages)
    if ((${#missing[@]} == 0)); then
        return
    fi
    local as_root=()
    if ((EUID != 0)); then
        if ! command -v sudo >/dev/null || { [[ ! -t 0 ]] && ! sudo -n true 2>/dev/null; }; then
            fail "packages are missing and only root may install them: apt-get install ${missing[*]}"
        fi
        as_root=(sudo)
        sudo -v # asks for the password here, where it can be seen
    fi
    quietly "${as_root[@]}" apt-get update -q
    mapfile -t missing < <(available_packages "${missing[@]}")
    printf 'Installing %s\n' "${missing[*]}"
    quietly "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -q --no-install-recommends "${missing[@]}"
}

# configure PRESET: only when the build folder has not been configured, or with other presets; afterwards the build does it
# where needed.
configure() {
    if [[ ! -f build/$1/build.ninja || CMakePresets.json -nt build/$1/build.ninja ]]; then
        quietly cmake --preset "$1"
    fi
}

# The one that CMakeLists.txt states.
project_version() {
    sed -n 's/^project(recording-management VERSION \([0-9.]*\).*/\1/p' "$repository/CMakeLists.txt"
}

# shellcheck shell=bash # it is sourced, never run
# Sourced by the tools: goes to the root of the tree, and offers what they share.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

say() { echo "== $*"; }

# quietly <command>...: its output is shown only when it fails.
quietly() {
    local log
    log=$(mktemp)
    if "$@" >"$log" 2>&1 </dev/null; then
        rm "$log"
        return 0
    fi
    cat "$log"
    rm "$log"
    echo "Failed: $*" >&2
    return 1
}

# need <what>=<package>...: installs the Debian packages of the commands and files that are missing,
# or prints the line to type.
need() {
    local pair what missing=() apt=(apt-get)
    for pair in "$@"; do
        what=${pair%%=*}
        if [[ $what == /* ]]; then
            [[ -e $what ]] || missing+=("${pair#*=}")
        else
            command -v "$what" >/dev/null || missing+=("${pair#*=}")
        fi
    done
    ((${#missing[@]})) || return 0
    if ((EUID != 0)); then apt=(sudo -n apt-get); fi
    if ! command -v apt-get >/dev/null || ! "${apt[@]}" --version >/dev/null 2>&1; then
        echo "Some packages are missing. On Debian, install them with this line and start again:" >&2
        echo "  sudo apt-get update && sudo apt-get install -y ${missing[*]}" >&2
        exit 1
    fi
    say "Installing ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    quietly "${apt[@]}" update || true # an old list may still do
    quietly "${apt[@]}" install -y --no-install-recommends "${missing[@]}"
}

# shellcheck disable=SC2034 # used by those that source this file
build_tools=("cmake=cmake" "ninja=ninja-build" "g++=g++")

# memcheck <preset>: valgrind over the example of a preset that is built.
memcheck() {
    say "Running the example of $1 under valgrind"
    need "valgrind=valgrind"
    quietly examples/run "build/$1" valgrind --leak-check=full --show-leak-kinds=definite,indirect \
        --errors-for-leak-kinds=definite,indirect --error-exitcode=99
}

# The sanitizers' memory maps need addresses that are not randomised too far, where that may be set.
without_randomisation=()
# shellcheck disable=SC2034 # used by those that source this file
if setarch -R true 2>/dev/null; then without_randomisation=(setarch -R); fi

# build <preset>: configures and builds it in build/<preset>.
build() {
    say "Building $1"
    quietly cmake --preset "$1"
    quietly cmake --build --preset "$1" -- --quiet
}

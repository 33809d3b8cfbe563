# shellcheck shell=bash # it is sourced, never run
# Sourced by the tools: goes to the root of the tree, and offers what they share.
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit

# Whatever a tool or its tests leave in the temporary folder, however they end, goes with the tool.
TMPDIR=$(mktemp -d)
export TMPDIR
trap 'rm -rf "$TMPDIR"' EXIT

terminal=0
if [[ -t 1 && ${TERM-dumb} != dumb ]]; then terminal=1; fi

say() { echo "== $*"; }

# tell [text]: on a terminal, one line that moves: each text takes the place of the one before.
tell() { ((!terminal)) || printf '\r\e[K\e[?7l%s\e[?7h' "${*//[^[:print:]]/ }"; }

# watch <log>: adds what it reads to the file. From the second second on it tells the latest line,
# and where no terminal is, says each quarter of what is counted like "12/102".
watch() {
    local line start=$SECONDS quarters=0 now
    while IFS= read -r line || [[ -n $line ]]; do
        printf '%s\n' "$line" >&3
        ((SECONDS > start + 1)) || continue
        tell "$line"
        if ((terminal)) || [[ ! $line =~ ^\ *\[?([0-9]+)/([0-9]+) ]]; then continue; fi
        now=$((4 * BASH_REMATCH[1] / BASH_REMATCH[2]))
        if ((now > quarters)); then echo "   ${BASH_REMATCH[1]} of ${BASH_REMATCH[2]}"; fi
        quarters=$now
    done 3>>"$1"
    tell
}

# quietly <command>...: its output is shown only when it fails, without the builder's counting.
quietly() {
    local log
    log=$(mktemp)
    if "$@" 2>&1 </dev/null | watch "$log"; then
        rm "$log"
        return 0
    fi
    grep -v '^\[[0-9]*/[0-9]*\] ' "$log" || true
    rm "$log"
    echo "Failed: $*" >&2
    return 1
}

# need <what>=<package>...: installs the Debian packages of the commands and files that are missing,
# or says what is missing and what to type.
need() {
    local pair what missing=() sudo=''
    for pair in "$@"; do
        what=${pair%%=*}
        if [[ $what == /* ]]; then
            [[ -e $what ]] || missing+=("${pair#*=}")
        else
            command -v "$what" >/dev/null || missing+=("${pair#*=}")
        fi
    done
    ((${#missing[@]})) || return 0
    if install_packages "${missing[@]}"; then return 0; fi
    if ((EUID != 0)); then sudo='sudo '; fi
    echo "Missing: ${missing[*]}. On Debian, with a network, type:" \
        "${sudo}apt-get update && ${sudo}apt-get install -y ${missing[*]}" >&2
    if [[ -s $TMPDIR/apt ]]; then
        sed -nE '/^(E: |W: (Failed))/{s//  apt-get says: \2/p;q}' "$TMPDIR/apt" >&2
    fi
    exit 1
}

# install_packages <package>...: whether it could; apt-get's words are in $TMPDIR/apt.
install_packages() {
    local apt=(env -u TMPDIR DEBIAN_FRONTEND=noninteractive apt-get -o Acquire::Retries=0)
    if ((EUID != 0)); then apt=(sudo -n "${apt[@]}"); fi
    "${apt[@]}" --version >/dev/null 2>&1 || return 1
    say "Installing $*"
    "${apt[@]}" update 2>&1 </dev/null | watch "$TMPDIR/apt" || true # an old list may still do
    "${apt[@]}" install -y --no-install-recommends "$@" 2>&1 </dev/null | watch "$TMPDIR/apt"
}

# shellcheck disable=SC2034 # used by those that source this file
build_tools=("cmake=cmake" "ninja=ninja-build" "g++=g++")
# shellcheck disable=SC2034 # what the program lyr is built with
program_needs=("/usr/include/gelf.h=libelf-dev" "/usr/include/CLI/CLI.hpp=libcli11-dev"
    "/usr/include/nlohmann/json.hpp=nlohmann-json3-dev")

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

# build <preset>: configures and builds it in build/<preset>, which runs programs of it.
build() {
    say "Building $1"
    quietly cmake --preset "$1"
    quietly "${without_randomisation[@]}" cmake --build --preset "$1"
}

#!/bin/bash
# lines.sh <build directory> <compiler>: the shortest projects have as many lines as we say, and
# those very lines build against an installed tree and run. Blank lines, lone braces and the
# client's main are not counted.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$1" --prefix "$work/installed" >/dev/null
compiler=$2

fail() {
    echo "lines.sh: $*" >&2
    exit 1
}

# project <folder> <number of lines> <its program> <what that prints>
project() {
    local source="$work/$1" build="$work/$1.build" files lines
    mkdir "$source"
    cp "$here/$1"/*.{h,cpp,txt} "$source"
    mapfile -t files < <(find "$source" -type f ! -name main.cpp)
    if grep -HnE '^.{101}' "${files[@]}"; then fail "this is more than a line"; fi
    lines=$(cat "${files[@]}" | grep -cvE '^[[:space:]{}]*;?$')
    ((lines == $2)) || fail "$1 has $lines lines, and not $2"

    cmake -S "$source" -B "$build" -G Ninja "-DCMAKE_CXX_COMPILER=$compiler" \
        "-DCMAKE_PREFIX_PATH=$work/installed"
    cmake --build "$build"
    local dictionaries
    dictionaries=$(find "$build/components/dictionary" -mindepth 1 -type d | paste -sd:)
    [[ $(LYRDictionaryPath=$dictionaries "$build/$3") == "$4" ]] || fail "$3 does not print: $4"
}

# At most 15 are promised for an interface, a class and its build file; at most 25 for two
# interfaces, a class, a kept extension and the build file of their two libraries.
project greeter 14 greet "Hello, world!"
project layer 25 layers "area 3.25, layer 2"

#!/bin/bash
# lines.sh <build directory> <compiler>: the shortest projects have as many lines as we say, and
# those very lines build against an installed tree and run, with nothing set. Blank lines, lone braces and the
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
    local name source build files lines
    name=$(basename "$1") source="$work/$name" build="$work/$name.build"
    mkdir "$source"
    cp "$1"/*.{h,cpp} "$1/CMakeLists.txt" "$source"
    mapfile -t files < <(find "$source" -type f ! -name main.cpp)
    if grep -HnE '^.{101}' "${files[@]}"; then fail "this is more than a line"; fi
    lines=$(cat "${files[@]}" | grep -cvE '^[[:space:]{}]*;?$')
    ((lines == $2)) || fail "$name has $lines lines, and not $2"

    cmake -S "$source" -B "$build" -G Ninja "-DCMAKE_CXX_COMPILER=$compiler" \
        "-DCMAKE_PREFIX_PATH=$work/installed"
    cmake --build "$build"
    [[ $("$build/bin/$3") == "$4" ]] || fail "$3 does not print: $4"
}

# At most 15 are promised for an interface, a class and its build file; at most 25 for two
# interfaces, a class, a kept extension and the build file of their two libraries.
project "$here/../../examples/tutorial" 14 greet "Hello, world!"
project "$here/layer" 25 layers "area 3.25, layer 2"

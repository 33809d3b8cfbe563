#!/bin/bash
# install_consumer.sh <build directory> <compiler>: installs, moves the installed tree, and builds and
# runs the consumer against it, once found through CMake and once through pkg-config.
set -euo pipefail
source=$(cd "$(dirname "$0")" && pwd)/consumer
compiler=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$1" --prefix "$work/installed" >/dev/null
mv "$work/installed" "$work/moved"
prefix=$work/moved
expected='from libPointView'

run() {
    local output
    output=$(LYRDictionaryPath=$source LD_LIBRARY_PATH=$1${2:+:$2} "$1/consumer")
    [[ $output == "$expected" ]] || { echo "$1/consumer printed: $output"; exit 1; }
}

cmake -G Ninja -S "$source" -B "$work/cmake" \
    -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$compiler"
cmake --build "$work/cmake"
run "$work/cmake"

mkdir "$work/pkg-config"
cd "$work/pkg-config"
PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name LYRComponentModel.pc)")
export PKG_CONFIG_PATH
read -ra cflags <<<"$(pkg-config --cflags LYRComponentModel)"
read -ra libs <<<"$(pkg-config --libs LYRComponentModel)"
"$compiler" -std=c++17 -shared -fPIC "${cflags[@]}" "$source/PointView.cpp" "${libs[@]}" -o libPointView.so
"$compiler" -std=c++17 "${cflags[@]}" "$source/consumer.cpp" "${libs[@]}" -o consumer
run "$work/pkg-config" "$(pkg-config --variable=libdir LYRComponentModel)"

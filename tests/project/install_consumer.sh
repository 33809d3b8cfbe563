#!/bin/bash
# install_consumer.sh <build directory> <compiler>: installs, moves the installed tree, and builds and
# runs the tutorial against it as a project of its own, once found through CMake and once through
# pkg-config.
set -euo pipefail
source=$(cd "$(dirname "$0")" && pwd)/../../examples/tutorial
compiler=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$1" --prefix "$work/installed" >/dev/null
mv "$work/installed" "$work/moved"
prefix=$work/moved

cmake -G Ninja -S "$source" -B "$work/cmake" \
    -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$compiler"
cmake --build "$work/cmake"
"$source/run" "$work/cmake" | diff -u "$source/expected-output.txt" -

mkdir "$work/pkg-config"
cd "$work/pkg-config"
PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name LYRComponentModel.pc)")
export PKG_CONFIG_PATH
read -ra flags <<<"$(pkg-config --cflags LYRComponentModel)"
flags+=("-I$source/../support")
read -ra libs <<<"$(pkg-config --libs LYRComponentModel)"
"$compiler" -std=c++17 -shared -fPIC "${flags[@]}" "$source/Greeter.cpp" "${libs[@]}" -o libGreeter.so
"$compiler" -std=c++17 "${flags[@]}" "$source/main.cpp" "${libs[@]}" -o greet
LD_LIBRARY_PATH=$(pkg-config --variable=libdir LYRComponentModel)
export LD_LIBRARY_PATH
"$source/run" . | diff -u "$source/expected-output.txt" -

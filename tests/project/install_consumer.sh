#!/bin/bash
# install_consumer.sh <build directory> <compiler>: installs, moves the installed tree, and builds and
# runs the examples of a greeter against it, without the kit as a project of its own, found through
# CMake, and both through pkg-config. Then, that a project which contains this one installs nothing of
# it unasked.
set -euo pipefail
source=$(cd "$(dirname "$0")" && pwd)/../../examples/by-hand
kit=$source/../tutorial
compiler=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$1" --prefix "$work/installed" >/dev/null
mv "$work/installed" "$work/moved"
prefix=$work/moved

cmake -G Ninja -S "$source" -B "$work/cmake" \
    -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$compiler"
cmake --build "$work/cmake"
"$source/run" "$work/cmake" | diff -u "$kit/expected-output.txt" -

mkdir "$work/pkg-config"
cd "$work/pkg-config"
PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name LYRComponentModel.pc)")
export PKG_CONFIG_PATH
libdir=$(dirname "$PKG_CONFIG_PATH") flags=() libs=()
eval "flags=($(pkg-config --cflags LYRComponentModel) '-I$source/../support')"
eval "libs=($(pkg-config --libs LYRComponentModel))"
"$compiler" -std=c++17 -shared -fPIC "${flags[@]}" "$source/Greeter.cpp" "${libs[@]}" -o libGreeter.so

# An old run path leads to the components too, a new one to libLYRComponentModel alone.
"$compiler" -std=c++17 "${flags[@]}" "$source/main.cpp" "${libs[@]}" -o greet \
    -Wl,--disable-new-dtags "-Wl,-rpath,$libdir" "-Wl,-rpath,\$ORIGIN"
LYRDictionaryPath=$source/dictionary ./greet | diff -u "$kit/expected-output.txt" -

# The same on the kit.
mkdir kit
"$compiler" -std=c++17 -shared -fPIC "${flags[@]}" "$kit/Greeter.cpp" "${libs[@]}" -o kit/libGreeter.so
"$compiler" -std=c++17 "${flags[@]}" "$kit/main.cpp" "${libs[@]}" -o kit/greet \
    -Wl,--disable-new-dtags "-Wl,-rpath,$libdir" "-Wl,-rpath,\$ORIGIN"
LYRDictionaryPath=$source/dictionary kit/greet | diff -u "$kit/expected-output.txt" -

echo 'int main() { return LYRVersion() != LYR_VERSION; }' >version.cpp
"$compiler" -std=c++17 "${flags[@]}" -include LYRVersion.h version.cpp -o version \
    -Wl,--as-needed "${libs[@]}" -Wl,--enable-new-dtags "-Wl,-rpath,$libdir"
./version

echo "cmake_minimum_required(VERSION 3.25)
project(Parent LANGUAGES CXX)
add_subdirectory(\"$source/../..\" part)" >CMakeLists.txt
cmake -G Ninja -S . -B parent -DCMAKE_CXX_COMPILER="$compiler"
cmake --install parent --prefix "$work/parent" # would miss what is not built

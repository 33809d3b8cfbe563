#!/bin/bash
# fetch_content.sh <source directory> <compiler>: the tutorial's project fetches this tree instead of
# finding it installed, without a network. It builds, with the lyr that it needs, and runs; and it
# installs nothing of this tree but the two libraries, WITH_RUNTIME.
set -euo pipefail
unset LYRDictionaryPath LYRDictionaryNoPathNoFallback LD_LIBRARY_PATH
tutorial=$1/examples/tutorial
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
project=$work/project build=$work/build installed=$work/installed
cp -r "$tutorial" "$project"
fetched="include(FetchContent)
FetchContent_Declare(LYRComponentModel SOURCE_DIR \"$1\")
FetchContent_MakeAvailable(LYRComponentModel)"
found=$(<"$project/CMakeLists.txt")
line=$(grep '^find_package(' <<<"$found")
echo "${found/"$line"/"$fetched"}" >"$project/CMakeLists.txt"

# What is compiled is compiled in the other tests too: here as fast as can be.
cmake -G Ninja -S "$project" -B "$build" -DCMAKE_CXX_COMPILER="$2" -DCMAKE_CXX_FLAGS=-O0 \
    -DCMAKE_INSTALL_LIBDIR=lib -DFETCHCONTENT_FULLY_DISCONNECTED=ON
cmake --build "$build"
"$build/bin/greet" | diff -u "$tutorial/expected-output.txt" -
diff -u "$tutorial/libGreeter.dicts" "$build/lib/Greeting/dictionary/libGreeter.dicts"

cmake --install "$build" --prefix "$installed" >/dev/null
(cd "$installed" && find . -type f | sort) | diff -u <(
    echo ./bin/greet
    printf './lib/Greeting/%s\n' dictionary/libGreeter.{clsidts,dicts,iidts} libGreeter.so
    find "$build" -type f -name 'libLYR*.so.*' -printf './lib/%f\n' | sort
) -

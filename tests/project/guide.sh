#!/bin/bash
# guide.sh <build directory> <compiler>: does what the guide begins with as its reader would, with an
# installed tree and the files in an empty folder, and sees that the component takes at most 15 lines.
# Then a plug-in of others comes to the guide's application.
set -euo pipefail
examples=$(cd "$(dirname "$0")" && pwd)/../../examples
tutorial=$examples/tutorial
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset LYRDictionaryPath LYRDictionaryNoPathNoFallback LD_LIBRARY_PATH
export CXX=$2 package=$work/package
cmake --install "$1" --prefix "$package" >/dev/null

files=(IGreeter.h Greeter.cpp CMakeLists.txt)
mkdir "$work/greeting"
cd "$work/greeting"
cp "${files[@]/#/$tutorial/}" "$tutorial/main.cpp" .
bash -e "$tutorial/commands" >log 2>&1 || { cat log; exit 1; }
grep '^Hello' log | diff -u <(cat "$tutorial"/expected-output.txt{,}) -
diff -u "$tutorial/libGreeter.dicts" build/lib*/Greeting/dictionary/libGreeter.dicts

lines=$(cat "${files[@]}" | grep -cvE '^[[:space:]{};]*$')
((lines <= 15)) || { echo "the greeter takes $lines lines" >&2; exit 1; }

for project in guide plug-in; do
    cmake -G Ninja -S "$examples/$project" -B "$work/$project" \
        -DCMAKE_PREFIX_PATH="$package" -DCMAKE_INSTALL_LIBDIR=lib
    cmake --build "$work/$project"
    cmake --install "$work/$project" --prefix "$work/installed"
done
mv "$work/installed" "$work/elsewhere"
diff -u <(cat "$examples/guide/expected-output.txt"
    echo "plug-ins: a haiku"
    echo "plug-ins: none of that name") <("$work/elsewhere/bin/notes" Haiku Sonnet)

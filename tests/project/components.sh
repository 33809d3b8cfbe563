#!/bin/bash
# components.sh <build directory> <compiler> <generator>: builds components and an application against
# an installed, moved tree, in folders with blanks; breaks and mends them; installs, moves and runs
# them. Then what is refused when a project is configured.
set -euo pipefail
unset LYRDictionaryPath LYRDictionaryNoPathNoFallback LD_LIBRARY_PATH
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$1" --prefix "$work/installed" >/dev/null
prefix="$work/the package"
mv "$work/installed" "$prefix"
source="$work/the source" build="$work/the build"
cp -r "$here/../../examples/by-hand" "$source"
cp -r "$here/../../examples/support" "$here"/components/* "$source"
common=(-G "$3" "-DCMAKE_CXX_COMPILER=$2" "-DCMAKE_PREFIX_PATH=$prefix")
dictionaries="$build/lib/Greeting/dictionary"

# configure [option...]
configure() { cmake -S "$source" -B "$build" "${common[@]}" -DCMAKE_INSTALL_LIBDIR=lib "$@"; }
fail() {
    echo "components.sh: $*" >&2
    exit 1
}

# builds [text]: the build succeeds, and says the text on the way.
builds() {
    cmake --build "$build" >"$work/log" 2>&1 || { cat "$work/log"; fail "the build fails"; }
    grep -qF -- "${1-}" "$work/log" || { cat "$work/log"; fail "nothing is said of $1"; }
}

# refuses <text> <command>...: the command fails and says the text, in one line or broken.
refuses() {
    local text=$1
    shift
    if "$@" >"$work/log" 2>&1; then fail "this is accepted, in spite of: $text"; fi
    tr -s ' \n' ' ' <"$work/log" | grep -qF -- "$text" || { cat "$work/log"; fail "not said: $text"; }
}

# breaks <text>: the build fails until it is mended, not only once.
breaks() {
    refuses "$1" cmake --build "$build"
    refuses "$1" cmake --build "$build"
}

: >"$source/baseline"
configure -DCMAKE_BUILD_TYPE=Release
builds "Writing the dictionary files of Greeter"
ctest --test-dir "$build" --output-on-failure
[[ $(cd "$dictionaries" && echo libLamp.*) == "libLamp.clsidts libLamp.dicts libLamp.iidts" ]]

# A hand-written line that has changed is looked at, and a library that has, and lyr.
cp "$source/dictionary/greeting.dicts" "$work/good"
echo "Greeter IGreeter libLamp" >>"$source/dictionary/greeting.dicts"
breaks "greeting.dicts:4: error: \"Greeter IGreeter libLamp\" contradicts \"Greeter IGreeter libGreeter\""
[[ -z $(find "$dictionaries" -name "libGreeter.*") ]] || fail "a failed build leaves dictionaries behind"
cp "$work/good" "$source/dictionary/greeting.dicts"
builds "Writing the dictionary files of Greeter"
cp "$source/Lamp.cpp" "$work/good"
sed -i 's/LYR_EXPORT//' "$source/Lamp.cpp"
breaks "fctLYRSysTSCreateLamp, for making a Lamp, is hidden in libLamp.so"
cp "$work/good" "$source/Lamp.cpp"
builds "Writing the dictionary files of Lamp"
builds
! grep -qF "Writing" "$work/log" || fail "dictionaries are written again for no reason"
touch "$prefix/bin/lyr"
builds "Writing the dictionary files of Lamp"
sed -i 's# dictionary/greeting.iidts##' "$source/CMakeLists.txt"
builds "Writing the dictionary files of Greeter"
cp "$here/components/CMakeLists.txt" "$source/CMakeLists.txt"
rm "$dictionaries/libLamp.iidts"
builds "Writing the dictionary files of Lamp"

# Each library is sound, both together are not.
sed -i 's/Lamp/Greeter/g' "$source/Lamp.cpp"
breaks "\"Greeter CreateInterface libGreeter\" contradicts \"Greeter CreateInterface libLamp\""
cp "$work/good" "$source/Lamp.cpp"
builds "Comparing the component libraries of greet"

# What only the whole program meets: once all is built, and in the tests.
cp "$source/dictionary/greeting.dicts" "$work/good"
echo "Greeter IDesk libGone" >>"$source/dictionary/greeting.dicts"
wrong="$dictionaries/libGreeter.dicts:3: error: \"Greeter IDesk libGone\" needs a library that is not found"
breaks "$wrong"
sed -i 's/Lamp WITH_RUNTIME/Lamp NO_CHECK WITH_RUNTIME/; s/^\(.*linked.*COMPONENTS.*\))/\1 NO_CHECK)/' \
    "$source/CMakeLists.txt"
builds
refuses "$wrong" ctest --test-dir "$build" --output-on-failure -R of_greet
of_folder() { ctest --test-dir "$build" --output-on-failure -R of_folder; }
refuses "/dictionary/greeting.dicts:4: error" of_folder
"$prefix/bin/lyr" check -d "$source/dictionary" -l "$build/lib/Greeting" -p "$build/bin/others" \
    --write-baseline "$source/baseline" >/dev/null || true
of_folder
cp "$work/good" "$source/dictionary/greeting.dicts"
cp "$here/components/CMakeLists.txt" "$source/CMakeLists.txt"
builds "Checking what greet finds"
builds
! grep -qF "Checking" "$work/log" || fail "what greet finds is checked again for no reason"
ctest --test-dir "$build" --output-on-failure -R of_

# Programs read all dictionaries that lie there.
echo 'lyr_add_component_library(Old SOURCES Old.cpp)' >>"$source/CMakeLists.txt"
cp "$source/Lamp.cpp" "$source/Old.cpp"
breaks "libOld.dicts:2: error: \"Lamp CreateInterface libOld\" contradicts"
sed -i 's/Lamp/Old/g' "$source/Old.cpp"
builds "Writing the dictionary files of Old"
sed -i 's/(Old/(Unbuilt/' "$source/CMakeLists.txt"
configure
cp "$here/components/CMakeLists.txt" "$source/CMakeLists.txt"
builds
[[ -z $(find "$dictionaries" -name "libOld.*") ]] || fail "a library that is no more has dictionaries"

# says <text> <command>...: all that the command says is the text.
says() {
    local text=$1 said
    shift
    said=$("$@" 2>&1) || true
    [[ $said == "$text" ]] || fail "$* says: $said"
}

# forbid <new place> <old place>: whatever is loaded or read in the old place makes itself heard.
forbid() {
    (cd "$1" && find . -name "*.so*" -o -name "*.dicts" -o -name "*idts") | while read -r file; do
        mkdir -p "$2/$(dirname "$file")"
        case $file in
        *.so*) cp "$work/abort.so" "$2/$file" ;;
        *) echo "nonsense" >"$2/$file" ;;
        esac
    done
}

# What the user would rather have: another libGreeter, and under another name.
cp "$source/Greeter.cpp" "$work/good"
sed -i 's/"Hello"/"Welcome"/' "$source/Greeter.cpp"
builds
mkdir "$work/users" "$work/users other"
cp "$build/lib/Greeting/libGreeter.so" "$work/users"
cp "$build/lib/Greeting/libGreeter.so" "$work/users other/libOther.so"
sed 's/libGreeter/libOther/' "$source/dictionary/greeting.dicts" >"$work/users other/libGreeter.dicts"
cp "$work/good" "$source/Greeter.cpp"
builds

# Installed and moved, it needs no variable and names no folder of this machine; nor does a program of
# others that loads a library of it. What the user sets comes first.
"$2" "$source/host.cpp" -o "$work/host" -ldl
"$2" -shared -fPIC "$source/abort.cpp" -o "$work/abort.so"
cmake --install "$build" --prefix "$work/first" >/dev/null
moved="$work/moved to"
mv "$work/first" "$moved"
mv "$build" "$work/build gone" && mv "$prefix" "$work/package gone"
forbid "$moved" "$work/first"
forbid "$work/build gone" "$build"
forbid "$work/package gone" "$prefix"
says "Hello, world!" "$moved/bin/greet"
says "Hello, world!" "$moved/bin/linked"
says "Hello, host!" "$work/host" "$moved/lib/Greeting/libDesk.so"
(cd / && ln -s "$moved/bin/greet" "$work/link" && says "Hello, world!" "$work/link")
says "Welcome, world!" env LD_LIBRARY_PATH="$work/users" "$moved/bin/greet"
says "Welcome, world!" env LD_LIBRARY_PATH="$work/users other" \
    LYRDictionaryPath="$work/users other" "$moved/bin/greet"
[[ $(readelf -d "$moved/bin/greet") == *"(RUNPATH)"*"[\$ORIGIN/../lib]"* ]] ||
    fail "greet has another run path"
! grep -rF "$work" "$moved" || fail "an installed file names a folder of this machine"
rm -r "$build" "$prefix"
mv "$work/build gone" "$build" && mv "$work/package gone" "$prefix"

[[ $3 == Ninja ]] || exit 0 # the generator makes no difference to what follows
cross=(-DCMAKE_SYSTEM_NAME=Linux -DCMAKE_SYSTEM_PROCESSOR="$(uname -m)")
refuses "this is a cross build, which needs one of the machine that builds." \
    cmake -S "$source" -B "$work/cross" "${common[@]}" "${cross[@]}"
refuses "LYR_PROGRAM names \"/none/lyr\", which is not there" \
    cmake -S "$source" -B "$work/cross" "${common[@]}" "${cross[@]}" -DLYR_PROGRAM=/none/lyr
cmake -S "$source" -B "$work/cross" "${common[@]}" "${cross[@]}" "-DLYR_PROGRAM=$prefix/bin/lyr"
cmake --build "$work/cross"
[[ $(ctest --test-dir "$work/cross" -R of_) == *of_greet*"Not Run (Disabled)"* ]] ||
    fail "libraries of the machine that builds are taken for those of another"
refuses "say -static, and a static program can't load component libraries" \
    configure -DCMAKE_EXE_LINKER_FLAGS=-static
refuses "BUILD_SHARED_LIBS is off, and the component model is not built as static libraries" \
    cmake -S "$here/../.." -B "$work/static" "${common[@]}" -DBUILD_SHARED_LIBS=OFF

# refuses_call <text> <line of CMake>
refuses_call() {
    cp "$here/components/CMakeLists.txt" "$source/CMakeLists.txt"
    echo "$2" >>"$source/CMakeLists.txt"
    refuses "$1" configure -DCMAKE_EXE_LINKER_FLAGS=
}
refuses_call 'lyr_add_component_library(New): "SORCES" is no argument of it; it takes SOURCES' \
    'lyr_add_component_library(New SORCES Lamp.cpp)'
refuses_call 'lyr_add_application(new): Lmap is no component library; add it before' \
    'lyr_add_application(new SOURCES main.cpp COMPONENTS Lmap)'
refuses_call '/elsewhere/lib is not below CMAKE_INSTALL_PREFIX' \
    'set(LYR_COMPONENT_INSTALL_DIR /elsewhere/lib)
     lyr_add_application(new SOURCES main.cpp)'
refuses_call 'lyr_add_dictionary_check(new): name its DICTIONARIES, or as its PROGRAM' \
    'lyr_add_dictionary_check(new PROGRAM others)'
refuses_call 'lyr_test_environment(none): this directory has no test of that name' \
    'lyr_test_environment(none)'
refuses_call 'no target in which gtest_discover_tests(new), above, finds tests' \
    'lyr_add_application(new SOURCES main.cpp)
     lyr_test_environment(new)'

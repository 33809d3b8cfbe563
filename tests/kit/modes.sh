#!/bin/bash
# modes.sh <compiler> <folder of libLYRComponentModel> <folder of libLYRSysTS> <include folder>...:
# the scenario prints the same whatever it is compiled with, and its libraries keep their records.
# So it does with one library of objects of
# different modes.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
compiler=$1 libs=("-L$2" "-L$3" -lLYRComponentModel -lLYRSysTS "-Wl,-rpath,$2:$3")
flags=(-fvisibility=hidden -Wall -Wextra -Wpedantic -Werror "${@/#/-I}")
unset 'flags[5]' 'flags[6]' 'flags[7]' # what is no include folder
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
export LYRDictionaryPath=$here/dictionary LD_LIBRARY_PATH=$work

# library <name> <what links it>...
library() {
    "$compiler" -shared -fPIC "${@:2}" -o "libLyrTest$1.so" -L. "${libs[@]}"
}
check() {
    ./scenario | diff -u "$here/expected-output.txt" - || { echo "with $*" >&2; exit 1; }
    for name in Workshop Additions; do
        objcopy -O binary --only-section=lyr_manifest "libLyrTest$name.so" records
        tr '\0' '\n' <records | LC_ALL=C sort | diff -u "$here/records/$name.txt" - ||
            { echo "with $*" >&2; exit 1; }
    done
}
run() {
    library Workshop "${flags[@]}" "$@" "$here/Workshop.cpp"
    library Additions "${flags[@]}" "$@" "$here/Additions.cpp" -lLyrTestWorkshop
    "$compiler" "${flags[@]}" "$@" "$here/Scenario.cpp" -o scenario "${libs[@]}"
    check "$@"
}

gc=(-O2 -std=c++17 -ffunction-sections -fdata-sections -Wl,--gc-sections)
run -std=c++17 -O0
run -std=c++20 -O2 -DNDEBUG
run -std=c++17 -O2 -fno-rtti -fno-exceptions
run -std=c++17 -O2 -flto
for linker in bfd gold lld; do
    command -v "ld.$linker" >/dev/null || continue
    run "${gc[@]}" -fuse-ld="$linker" -s
done

# One library of objects of two modes, which it now counts together, in a program of a third.
modern=(-std=c++20 -O2 -fno-rtti -fno-exceptions -DNDEBUG)
"$compiler" "${flags[@]}" -std=c++17 -O0 -fPIC -c "$here/Workshop.cpp" -o Workshop.o
"$compiler" "${flags[@]}" "${modern[@]}" -fPIC -c "$here/Additions.cpp" -o Additions.o
"$compiler" "${flags[@]}" -std=c++17 "$here/Scenario.cpp" -o scenario "${libs[@]}"
library Workshop Workshop.o Additions.o
ln -sf libLyrTestWorkshop.so libLyrTestAdditions.so
./scenario | grep -v ' deleted ' | diff -u <(grep -v ' deleted ' "$here/expected-output.txt") -

# What has the name of an entry point is a function, also where an interface is called as another one
# and its class together.
cat >names.cpp <<'END'
#include <lyr/kit.h>
struct IPart : IUnknown { LYR_INTERFACE(IPart, "a3000000-0000-4000-8000-000000000001"); };
struct IPartView : IUnknown { LYR_INTERFACE(IPartView, "a3000000-0000-4000-8000-000000000002"); };
LYR_COMPONENT(View, IPart) {};
LYR_COMPONENT(Other, IPartView) {};
END
if library Names "${flags[@]}" -std=c++17 -O2 names.cpp 2>names.log; then
    symbols=$(nm -D --defined-only libLyrTestNames.so | grep LYRSysTSCreateI)
    ! grep -v ' T ' <<<"$symbols" || { echo "these are no functions" >&2; exit 1; }
else
    # clang, which wants something of the interface's name defined, says so; of two sources, `lyr`.
    grep "^error: LYRSysTSCreateIPartView changed binding" names.log || { cat names.log >&2; exit 1; }
fi

# What is written on the kit is not much more for the compiler than what is written by hand.
lines() { "$compiler" "${flags[@]}" -std=c++17 -I"$examples/support" -E "$1" | wc -l; }
examples=$here/../../examples
for source in Greeter main; do
    kit=$(lines "$examples/tutorial/$source.cpp")
    raw=$(lines "$examples/by-hand/$source.cpp")
    ((2 * kit <= 3 * raw)) || { echo "$source: $kit lines, by hand $raw" >&2; exit 1; }
done

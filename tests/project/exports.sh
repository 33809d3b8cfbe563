#!/bin/bash
# exports.sh <build directory>: the installed libraries export what exports/<library>.txt lists, one
# demangled name a line, and nothing else.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$1" --prefix "$prefix" >/dev/null
failed=0
for expected in "$here"/exports/*.txt; do
    name=$(basename "$expected" .txt)
    library=$(find "$prefix" -name "lib$name.so")
    nm -D --defined-only -C "$library" | cut -d ' ' -f 3- | LC_ALL=C sort -u >"$prefix/$name"
    diff -u --label expected --label "exported by $name" "$expected" "$prefix/$name" || failed=1
done
exit $failed

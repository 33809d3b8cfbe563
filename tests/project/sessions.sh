#!/usr/bin/env bash
# sessions.sh <document> <application> [--renew]: each "console" block of the document shows what its
# command prints, in a copy of the application's folder, called /opt/notes, after what stands in the
# comment before it, but for times and what comes with them: those are never the same twice. --renew
# writes that into the document.
set -euo pipefail
document=$1 application=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# run <what breaks it> <command>
run() {
    rm -rf "$work/notes"
    cp -r "$application" "$work/notes"
    cd "$work/notes"
    eval "$1"
    { eval "$2" || true; } | sed "s|$work/notes|/opt/notes|g"
    cd - >/dev/null
}

# without_times <file>: the lengths of time, how many were longer than some length, and threads.
without_times() {
    sed -E 's/^ +[0-9]+( +[0-9.]+ ms)/ N\1/; s/ +[0-9]+\.[0-9]{3} ms/ N ms/g; s/(thread [^ ]+ )\([0-9]+\)/\1(N)/' "$1"
}

breaking='' count=0
while IFS= read -r line; do
    if [[ $line =~ ^'<!-- session '(.*)' -->'$ ]]; then breaking=${BASH_REMATCH[1]}; fi
    if [[ -n ${shown-} && $line != '```' ]]; then continue; fi
    shown=''
    printf '%s\n' "$line"
    if [[ $line =~ ^'$ '(.*)$ ]]; then
        run "$breaking" "${BASH_REMATCH[1]}" 2>/dev/null
        shown=yes count=$((count + 1))
    fi
done <"$document" >"$work/renewed"
if [[ ${3-} == --renew ]]; then cp "$work/renewed" "$document"; fi
((count)) || { echo "$document has no sessions" >&2; exit 1; }
diff -u <(without_times "$document") <(without_times "$work/renewed")

#!/bin/bash
# scenario.sh <program> <folder of its libraries>: the scenario prints what it should.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
export LYRDictionaryPath=$here/dictionary
export LD_LIBRARY_PATH=$2${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}
"$1" | diff -u "$here/expected-output.txt" -

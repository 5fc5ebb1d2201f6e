#!/usr/bin/env bash
# run_test.sh CORVANE FILE: runs a file of Tcl tests inside Corvane, in a fresh directory that is also its
# home, so that nothing of the user's reaches the tests and the tests leave nothing behind.
set -euo pipefail

corvane=$1 file=$2
driver=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)/run_test.tcl
scratch=$(mktemp -d)
trap 'rm -rf -- "$scratch"' EXIT
mkdir "$scratch/home" "$scratch/work"
cd -- "$scratch/work"

environment=(env -u OMU_APPROOT -u TANDREL_LOCAL_USER_DATA -u XDG_DATA_HOME -u XDG_CONFIG_HOME -u XDG_STATE_HOME
    -u XDG_CACHE_HOME -u DISPLAY "HOME=$scratch/home")
status=0
"${environment[@]}" "$corvane" -mode batch -nolog -nojournal -notrace -source "$driver" -tclargs "$file" \
    </dev/null >"$scratch/output" 2>&1 || status=$?
cat -- "$scratch/output"
((status == 0)) || { printf 'Corvane ended with status %d.\n' "$status" && exit 1; }

# A file that ends the process early, with whatever status, has not run its tests.
grep -q "^$(basename -- "$file"): [1-9][0-9]* passed, 0 failed, [0-9]* skipped$" "$scratch/output" ||
    { printf 'The tests did not run to their end.\n' && exit 1; }

# What the whole-program tests share. A test is a bash script that sources this file, calls `check` for each
# behaviour, and ends with `finish`. It gets the application root as its first argument and runs in a
# fresh directory with a fresh home; both are removed at the end.

set -uo pipefail

sources=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd)
app_root=$(cd -- "$1" && pwd)
corvane=$app_root/bin/corvane
scratch=$(mktemp -d)
trap 'rm -rf -- "$scratch"' EXIT
export HOME=$scratch/home TMPDIR=$scratch/tmp
mkdir "$HOME" "$TMPDIR" "$scratch/work"
cd -- "$scratch/work" || exit 1
unset OMU_APPROOT TANDREL_LOCAL_USER_DATA DISPLAY _enable_pymode_
unset XDG_DATA_HOME XDG_CONFIG_HOME XDG_STATE_HOME XDG_CACHE_HOME

passed=0 failed=0

# run COMMAND...: runs it without a terminal; leaves its exit status in $status and its standard output and
# standard error in $out and $err. Standard input is empty unless the caller redirects $input to a file.
run() {
    status=0
    "$@" <"${input:-/dev/null}" >"$scratch/out" 2>"$scratch/err" || status=$?
    out=$(<"$scratch/out") err=$(<"$scratch/err")
}

# on_terminal "BEHAVIOUR": runs the expect script on standard input, which has the program as its argument and the
# procedures of terminal.exp.
on_terminal() {
    { printf 'source {%s}\n' "$sources/tests/e2e/terminal.exp" && cat; } >"$scratch/script.exp"
    run timeout 250 expect "$scratch/script.exp" "$corvane"
    check "$1" status_is 0
}

# check "BEHAVIOUR" TEST...: counts whether TEST, one of the expectations below or any command, is true.
check() {
    local behaviour=$1
    shift
    if "$@"; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
        printf 'FAILED: %s\n  expected: %s\n  status %s\n' "$behaviour" "$*" "${status:-}"
        printf '%s\n' "${out:-}" | head -n 40 | sed 's/^/  out: /'
        printf '%s\n' "${err:-}" | head -n 40 | sed 's/^/  err: /'
    fi
}

status_is() { [[ $status == "$1" ]]; }
shows() { [[ $out$'\n'$err == *"$1"* ]]; }
shows_not() { ! shows "$1"; }
shows_once() { [[ $(cat "$scratch/out" "$scratch/err" | grep -cF -- "$1") == 1 ]]; }
shows_line_once() { [[ $(cat "$scratch/out" "$scratch/err" | grep -cxF -- "$1") == 1 ]]; }
prints() { [[ $out == "$1" ]]; }
matches() { [[ $out =~ $1 ]]; }
is_empty() { [[ -d $1 && -z $(ls -A -- "$1") ]]; }
exists() { [[ -e $1 ]]; }
missing() { [[ ! -e $1 ]]; }
file_has() { grep -qF -- "$2" "$1"; }
file_has_not() { ! file_has "$@"; }
file_has_once() { [[ $(grep -cF -- "$2" "$1") == 1 ]]; }

finish() {
    printf '%d passed, %d failed\n' "$passed" "$failed"
    ((failed == 0 && passed > 0))
    exit
}

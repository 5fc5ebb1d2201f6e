# -version and -help answer anywhere, and leave no file behind.
source "$(dirname -- "${BASH_SOURCE[0]}")/lib.sh"

run "$corvane" -version
check "-version succeeds" status_is 0
check "the version text names the product and its version" matches '^Corvane v?[0-9]+\.[0-9]+'
check "-version leaves no log" is_empty .
check "-version says nothing on standard error" test -z "$err"
version=$out

mkdir read_only && cd read_only && chmod a-w . || exit 1
run "$corvane" -version
check "-version works in a directory that cannot be written" prints "$version"
cd .. || exit 1

run env -i "$corvane" -version
check "-version works without a home or any other variable" prints "$version"

run "$corvane" -help
check "-help succeeds" status_is 0
check "-help lists the mode option" shows "-mode"
check "-help lists the source option" shows "-source"
check "-help hides what is not for users" shows_not "-regress"
check "-help leaves no log" test "$(ls -A)" = read_only

run "$corvane" -mode batch -source - -version
check "-version wins over what else is asked for" prints "$version"

finish

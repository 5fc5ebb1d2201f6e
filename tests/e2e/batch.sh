# A batch session ends with the status that its scripts deserve, and shows an error exactly once.
source "$(dirname -- "${BASH_SOURCE[0]}")/lib.sh"

batch() { run "$corvane" -mode batch "$@"; }

printf 'puts "all is well"\n' >good.tcl
batch -source good.tcl
check "a good script ends with 0" status_is 0
check "what a script prints is shown" shows_line_once "all is well"

printf 'puts before\nerror "the pump is dry"\nputs after\n' >bad.tcl
batch -source bad.tcl -source good.tcl
check "a script error ends with 1" status_is 1
check "the error is shown once" shows_line_once "the pump is dry"
check "the error stands in the log once" test "$(grep -cx 'the pump is dry' corvane.log)" = 1
check "nothing behind the error runs" shows_not "after"
check "no further script runs" shows_not "all is well"

printf 'if {[catch {error "the pump is dry"} reason]} {puts "caught: $reason"}\n' >caught.tcl
batch -source caught.tcl
check "a caught error is no failure" status_is 0
check "a caught error is not shown as one" shows_not "ERROR"

batch -source nosuch.tcl
check "a missing script ends with 1" status_is 1
check "a missing script is named" shows "nosuch.tcl"

mkdir directory.tcl
batch -source directory.tcl
check "a directory is no script" status_is 1
check "the directory is named" shows "directory.tcl"

printf 'exit 7\n' >seven.tcl
batch -source seven.tcl
check "a script's own exit status is kept" status_is 7

printf 'return -code 5 odd\n' >odd.tcl
batch -source odd.tcl
check "an unusual completion code is no error" shows_not "ERROR"

printf 'puts "argv=$argv argc=$argc"\n' >args.tcl
batch -source args.tcl -tclargs -mode x -tclargs "two words"
check "what follows -tclargs goes to the script" shows "argv=-mode x {two words} argc=3"

printf 'puts "argv0=[file tail $argv0]"\n' >"two words.tcl"
batch -source "two words.tcl"
check "a script's name with blanks is one script" shows "argv0=two words.tcl"

printf 'proc dive {} {dive}\ndive\n' >deep.tcl
batch -source deep.tcl
check "endless recursion is a Tcl error" status_is 1
check "endless recursion is explained" shows "too many nested evaluations"

printf 'interp recursionlimit {} 10000000\nsource -notrace [info script]\n' >deeper.tcl
batch -notrace -source deeper.tcl
check "a script that raises Tcl's limit and sources itself ends with an error" status_is 1
check "and is explained in the same words" shows "too many nested evaluations"

finish

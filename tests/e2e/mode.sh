# -mode takes any beginning of a mode's name, and refuses what is none.
source "$(dirname -- "${BASH_SOURCE[0]}")/lib.sh"

printf 'puts "mode=$omu::mode requested=$omu::requested_mode"\n' >mode.tcl

for spelling in batch BATCH b Bat; do
    run "$corvane" -mode $spelling -nolog -nojournal -source mode.tcl
    check "-mode $spelling is batch mode" shows "mode=batch requested=batch"
    check "-mode $spelling ends after the script" status_is 0
done

printf 'puts "mode=$omu::mode"\n' >typed
input=typed run "$corvane" -mode t -nolog -nojournal
check "-mode t is tcl mode, and a script from a pipe is read to its end" shows "mode=tcl"
check "tcl mode ends well at the end of its input" status_is 0

for wrong in bx nonsense py; do
    run "$corvane" -mode $wrong -nolog -nojournal -source mode.tcl
    check "-mode $wrong fails" status_is 1
    check "-mode $wrong is named in the error" shows "'$wrong'"
    check "-mode $wrong has its message" shows "17-203"
    check "-mode $wrong runs no script" shows_not "mode="
done
check "a refused mode leaves no log" test "$(printf '%s ' *)" = "mode.tcl typed "

run "$corvane" -nonsense
check "an unknown option fails" status_is 1
check "an unknown option is named" shows "-nonsense"
check "an unknown option leaves no log" missing corvane.log

finish

# The log holds the banner and all that was shown; the journal is a script; both give way when they cannot
# be written.
source "$(dirname -- "${BASH_SOURCE[0]}")/lib.sh"

printf 'puts "first result"\n' >one.tcl
run "$corvane" -mode batch -source one.tcl
check "the session ends well" status_is 0
check "a log is made" exists corvane.log
check "a journal is made" exists corvane.jou
check "the log has the banner" file_has corvane.log "# Process ID         : "
check "the banner names the directory" file_has corvane.log "# Current directory  : $PWD"
check "the banner names the log" file_has corvane.log "# Log file           : $PWD/corvane.log"
check "the log shows what the session issued" file_has corvane.log "source one.tcl"
check "the journal has the banner" file_has corvane.jou "# Process ID         : "
check "the journal repeats the session's commands" file_has corvane.jou "source one.tcl"
check "every line of the journal's banner is a Tcl comment" \
    test -z "$(sed -n '/^#----/,/^#----/p' corvane.jou | grep -v '^#')"

mkdir replay && cp one.tcl corvane.jou replay && cd replay || exit 1
run "$corvane" -mode batch -log again.log -journal again.jou -source corvane.jou
check "a replayed journal repeats the session" shows_line_once "first result"
check "the log takes the name that was asked for" exists again.log
check "the journal takes the name that was asked for" exists again.jou
check "no file of the usual name is made then" missing corvane.log
cd .. || exit 1

run "$corvane" -mode batch -source one.tcl
check "the older log is kept beside the new one" test "$(ls corvane_*.backup.log | wc -l)" = 1
check "the older journal is kept beside the new one" test "$(ls corvane_*.backup.jou | wc -l)" = 1

run "$corvane" -mode batch -applog -log both.log -source one.tcl
run "$corvane" -mode batch -applog -log both.log -source one.tcl
check "-applog adds to the log" test "$(grep -c '# Process ID' both.log)" = 2

mkdir empty && cd empty || exit 1
run "$corvane" -mode batch -nolog -nojournal -source ../one.tcl
check "-nolog and -nojournal leave nothing" is_empty .

mkdir in_the_way
run "$corvane" -mode batch -log in_the_way -nojournal -source ../one.tcl
check "a log that cannot be made does not stop the session" status_is 0
check "a log that cannot be made is said" shows "17-138"
check "a log that cannot be made is named" shows "in_the_way"
check "the script has run all the same" shows "first result"

run "$corvane" -mode batch -nolog -journal nowhere/corvane.jou -source ../one.tcl
check "a journal that cannot be made does not stop the session" status_is 0
check "a journal that cannot be made is said" shows "17-138"

run "$corvane" -mode batch -regress -nojournal -log regress.log -source ../one.tcl
check "the log of a regression run names no version" file_has_not regress.log "# Corvane"
check "the log of a regression run still names the process" file_has regress.log "# Process ID"

finish

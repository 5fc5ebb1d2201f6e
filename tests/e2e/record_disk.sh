# A session whose log or journal finds no room on the disk, or is removed under it, says so once and goes on.
source "$(dirname -- "${BASH_SOURCE[0]}")/lib.sh"

# warned_once KEY FILE: the warning KEY names the file in one line of the output, and in no other place.
warned_once() {
    shows_once "WARNING: [Common 17-$1] '$2'"
}

cat >many.tcl <<'TCL'
set_param messaging.defaultLimit 2147483647
for {set i 0} {$i < 2000} {incr i} {
    send_msg_id {Full 17-1} INFO "line $i of a log that finds no room"
}
set_param messaging.defaultLimit 100
puts "many are done"
TCL
printf 'set a 1\nputs "a=$a"\nsource many.tcl\nset b 2\nputs "b=$b"\nexit 3\n' >typed

# A disk without any room.
input=typed run "$corvane" -mode tcl -log /dev/full -nojournal
check "a session without room for its log comes to its end" status_is 3
check "it does its commands" shows $'\nb=2\n'
check "it says once that the log cannot be written" warned_once 5018 /dev/full
check "it says why" shows "'/dev/full' cannot be written: No space left on device."
input=typed run "$corvane" -mode tcl -nolog -journal /dev/full
check "a session without room for its journal comes to its end" status_is 3
check "it says once that the journal cannot be written" warned_once 5018 /dev/full
run "$corvane" -mode batch -log /dev/full -nojournal -source many.tcl
check "a script without room for the log comes to its end" status_is 0
check "it does all its commands" shows 'many are done'
check "it says once, while it runs, that the log cannot be written" warned_once 5018 /dev/full
check "the script's user reads it before the script is done" \
    matches $'17-5018\].*many are done'
: >empty.tcl
run "$corvane" -mode batch -quiet -log /dev/full -nojournal -source empty.tcl
check "a session that does nothing tells it too" warned_once 5018 /dev/full

# A disk that becomes full while the session runs, as a limit on the size of its files.
limited() {
    (ulimit -S -f 24 && exec "$corvane" "$@") | cat
    return "${PIPESTATUS[0]}"
}
for ((i = 0; i < 3000; ++i)); do printf 'set value%d {some text for the journal}\n' "$i"; done >long
printf 'puts "b=[incr value2 2]"\n' >end.tcl
{
    printf 'set value2 0\n'
    cat long many.tcl
    printf 'set value2 0\nsource end.tcl\nexit 3\n'
} >typed
input=typed run limited -mode tcl -log full.log -journal full.jou
check "a session whose disk becomes full comes to its end" status_is 3
check "it does its commands to the last" shows $'\nb=2\n'
check "it says once that the log cannot be written" warned_once 5018 "$PWD/full.log"
check "it says once that the journal cannot be written" warned_once 5018 "$PWD/full.jou"
check "the log has what found room" file_has full.log 'set value20 {some text for the journal}'
check "the journal has what found room" file_has full.jou 'set value20 {some text for the journal}'
check "no file is larger than the disk" test "$(stat -c %s full.log)" -le 24576 -a "$(stat -c %s full.jou)" -le 24576

# Room again: what was kept in memory is written, and the next failure is told anew.
cat >again.tcl <<'TCL'
proc file_limit {bytes} {exec prlimit --pid [pid] --fsize=$bytes:unlimited}
proc size {} {file size again.log}
puts "before"
file_limit [size]
puts "kept one"
puts "kept two"
file_limit unlimited
puts "written"
file_limit [size]
puts "kept three"
file_limit unlimited
puts "last"
TCL
input=again.tcl run "$corvane" -mode tcl -log again.log -nojournal
check "a session whose disk has room again ends well" status_is 0
check "each of two failures is told once" test "$(grep -c '17-5018' <<<"$out")" = 2
check "nothing is lost that was kept in memory" \
    test "$(sed -n 's/^puts //p' again.log)" = \
    $'"before"\n"kept one"\n"kept two"\n"written"\n"kept three"\n"last"'

# The directory of log and journal is removed while the session runs.
cat >typed <<'TCL'
set a 1
file delete -force gone
puts "a=$a"
source many.tcl
set b 2
puts "b=$b"
exit 3
TCL
mkdir gone
input=typed run "$corvane" -mode tcl -log gone/s.log -journal gone/s.jou
check "a session whose directory is removed comes to its end" status_is 3
check "it does its commands" shows $'\nb=2\n'
check "it says once that the log was removed" warned_once 5260 "$PWD/gone/s.log"
check "it says once that the journal was removed" warned_once 5260 "$PWD/gone/s.jou"
check "it tells it as soon as the command is done that removed them" matches $'17-5260\].*a=1'
check "nothing comes back in the directory's place" missing gone

# The same while the session works in that directory.
mkdir gone
status=0
(cd gone && exec "$corvane" -mode tcl) <<'TCL' >"$scratch/out" 2>"$scratch/err" || status=$?
exec rm -rf [pwd]
set a 1
puts "a=$a"
exit 3
TCL
out=$(<"$scratch/out") err=$(<"$scratch/err")
check "a session whose working directory is removed comes to its end" status_is 3
check "it does its commands" shows $'a=1'
check "it says once that the log was removed" warned_once 5260 "$PWD/gone/corvane.log"
check "it says once that the journal was removed" warned_once 5260 "$PWD/gone/corvane.jou"

# A script of one long command tells it before it is done.
cat >busy.tcl <<'TCL'
file delete -force gone
for {set start [clock seconds]} {[clock seconds] < $start + 3} {after 100} {send_msg_id {Busy 17-1} STATUS working}
puts "busy is done"
TCL
mkdir gone
run "$corvane" -mode batch -log gone/s.log -nojournal -notrace -source busy.tcl
check "a long script whose log is removed comes to its end" status_is 0
check "it says once that the log was removed" warned_once 5260 "$PWD/gone/s.log"
check "its user reads it before the script is done" matches $'17-5260\].*busy is done'

# A file that was only renamed is still written.
printf 'file rename moved.log kept.log\nputs behind\n' >typed
input=typed run "$corvane" -mode tcl -log moved.log -nojournal
check "a renamed log is nothing to speak of" shows_not WARNING
check "a renamed log is written on" file_has kept.log behind

finish

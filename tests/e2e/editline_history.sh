# The history of the prompt: kept over sessions and shared by those at the same time, in the user's state
# directory.
source "$(dirname -- "${BASH_SOURCE[0]}")/lib.sh"
state=$HOME/.local/state/corvane/history

on_terminal "what is typed is kept" <<'EXPECT'
start
type "a command" "list one" {\none\r\n}
send "if 1 {\r"
see "the prompt for more" $more
send "format \"two\\nlines\"\r"
see "the prompt for more" $more
type "its end" "}" {\ntwo\r\nlines\r\n}
type "a command of the tool's own" "omu::is_regress" {\n0\r\n}
type "one among others" "set x 1; ::omu::is_regress" {\n0\r\n}
type "one that is part of another" "list \[omu::is_regress\]" {\n0\r\n}
type "one that fails" "nosuch" {invalid}
type "an empty line" "" {}
send "exit\r"
finish 0
EXPECT
cat >expected <<'TEXT'
list one
if 1 {\nformat "two\\nlines"\n}
list [omu::is_regress]
nosuch
exit
TEXT
check "the file has what the user typed and nothing of the tool's own" diff expected "$state"
check "the file is the user's alone" test "$(stat -c %a "$state")" = 600

on_terminal "the next session brings it back" <<'EXPECT'
start
send "\020\020"
see "the command before the last" {nosuch}
send "\020\020"
see "the whole entry of several lines" {if 1 \{[^\n]*\n[^\n]*format "two\\nlines"[^\n]*\n[^\n]*\}}
send "\r"
see "that it runs" {\ntwo\r\nlines\r\n.*corvane% $}
send "\020\020\020\020\020\020\020\020\020\020\020"
see "the oldest" {list one}
send "\r"
see "that it runs" {\none\r\n.*corvane% $}
send "exit\r"
finish 0
EXPECT

# 8 sessions type 500 commands each at the same time.
rm -- "$state"
cat >many.exp <<'EXPECT'
lassign $argv program terminal me
source $terminal
start 80 xterm -nolog -nojournal
for {set i 1} {$i <= 500} {incr i} {
    send "set session_${me}_$i ok\r"
    see "command $i" {\nok\r\n[^\n]*corvane% $}
}
send "omu::is_regress; exit\r"
finish 0
EXPECT
started=()
for ((i = 1; i <= 8; ++i)); do
    timeout 250 expect many.exp "$corvane" "$sources/tests/e2e/terminal.exp" "$i" >"many.$i" 2>&1 &
    started+=($!)
done
for ((i = 1; i <= 8; ++i)); do
    status=0
    wait "${started[i - 1]}" || status=$?
    check "session $i of 8" status_is 0
done
check "8 sessions of 500 commands give 4000" test "$(wc -l <"$state")" = 4000
check "each of them once" test "$(sort -u "$state" | grep -c '^set session_[1-8]_[0-9]* ok$')" = 4000

printf 'list good\n\377\376 no text \300\nwith\0nul\n%s\ncut o' "$(head -c 3000000 /dev/zero | tr '\0' x)" >"$state"
on_terminal "a damaged file gives what can be read of it" <<'EXPECT'
start
send "\020"
see "what was cut off" {cut o}
send "\020"
see "what is good" {list good}
send "\r"
see "that it runs" {\ngood\r\n.*corvane% $}
send "exit\r"
finish 0
EXPECT
check "the next entry has a line of its own" test "$(tail -n 2 "$state")" = $'list good\nexit'

rm -- "$state" && mkdir "$state"
on_terminal "a history that cannot be kept is told of once and does no harm" <<'EXPECT'
start
if {![regexp {WARNING: \[Common 17-5420\] The history of commands is not kept: [^\n]*corvane/history} $expect_out(buffer)]} {
    fail "the warning"
}
type "no second one" "list one" {^[^\n]*\none\r\n[^\n]*}
send "\020\r"
see "the command of this session" {\none\r\n.*corvane% $}
send "exit\r"
finish 0
EXPECT
rmdir -- "$state"

on_terminal "another place can be given" <<'EXPECT'
set env(XDG_STATE_HOME) [pwd]/state
start
send "exit\r"
finish 0
set env(TANDREL_LOCAL_USER_DATA) [pwd]/data
start
send "exit\r"
finish 0
EXPECT
check "the file of XDG_STATE_HOME" file_has_once state/corvane/history exit
check "the file of TANDREL_LOCAL_USER_DATA" file_has_once data/history exit
check "and nothing in the home" missing "$state"

printf 'set from_a_pipe 1\n' >typed
input=typed run "$corvane" -mode tcl -quiet -nolog -nojournal
check "a pipe leaves no history" missing "$state"

finish

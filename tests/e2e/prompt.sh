# The host's own prompt, without the line editor, in detail: interrupts, events, incomplete commands, the end of input, what log and journal hold.
source "$(dirname -- "${BASH_SOURCE[0]}")/lib.sh"

cat >host.exp <<'EXPECT'
# Starts a session at the host's own prompt.
proc begin {args} {
    start 80 xterm {*}$args
    send "omu::stop_editline\r"
    see "the host's prompt" {Corvane% $}
}
# Starts a command that tells when it runs, interrupts it, and waits for the prompt.
proc interrupt {what command} {
    send "puts \"now \[string repeat go 2\]\"; $command\r"
    see "$what to run" {now gogo\r}
    after 300
    send "\003"
    see "$what to be interrupted" {Interrupted: .*\r\n.*Corvane% $}
}
EXPECT

printf 'while 1 {}\n' >loop.tcl
on_terminal "the interrupt key stops what runs and nothing else" <<'EXPECT'
source host.exp
begin -nolog -nojournal
send "set x \{\r"
see "the prompt for the rest of a command" {> $}
send "\003"
see "a fresh line after the interrupt key" {\r\nCorvane% $}
send "\003"
see "a fresh line after the interrupt key at an empty line" {\r\nCorvane% $}
send "expr {6 * 7}\r"
see "that the broken command is forgotten" {\r\n42\r\nCorvane% $}
interrupt "a loop" {while 1 {}}
interrupt "a loop inside a catch" {catch {while 1 {}}}
interrupt "a loop in another interpreter" {interp create kid; kid eval {while 1 {}}}
interrupt "a wait for an event" {vwait forever}
interrupt "a pause" {after 60000}
interrupt "a loop in a sourced file" {source -notrace loop.tcl}
interrupt "a loop in an event handler" {after 0 {while 1 {}}; vwait forever}
send "puts still\[string repeat here 1\]\r"
see "that the session lives on" {stillhere\r+\nCorvane% $}
send "exit 5\r"
finish 5
EXPECT

on_terminal "events run while the prompt waits" <<'EXPECT'
source host.exp
begin
send "after 50 {puts \[string repeat tick 2\]}; puts started\r"
see "a timer to fire at the prompt" {ticktick}
send "after 10 {error \[string repeat bang 2\]}\r"
see "an error of a timer" {ERROR: .*bangbang}
send "gets stdin line\r"
send "a line\r"
see "a script to read a line" {\r\n6\r\nCorvane% $}
send "list \$line\r"
see "the line that it read" {\{a line\}\r\nCorvane% $}
send "!!\r"
see "the last command again" {\{a line\}\r\nCorvane% $}
send "omu::is_regress\r"
see "a command of the tool's own" {\r\n0\r\nCorvane% $}
send "set tcl_prompt1 {puts -nonewline \"mine: \"}\r"
see "a prompt of the user's own" {\nmine: $}
send "\004"
finish 0
EXPECT
check "the journal has what was typed" file_has_once corvane.jou 'gets stdin line'
check "the journal has no command of the tool's own" file_has_not corvane.jou 'omu::is_regress'
check "the log has what was typed" file_has corvane.log 'gets stdin line'
check "the log has what failed" file_has_once corvane.log 'ERROR: [Common 17-5020] bangbang'

# A terminal that goes away ends the session; what it had to write is written.
rm -f corvane.log corvane.jou
on_terminal "a hang-up is no failure of the test" <<'EXPECT'
source host.exp
begin
send "puts last\[string repeat word 1\]\r"
see "the output" {lastword\r+\nCorvane% $}
exec kill -HUP [exp_pid]
expect eof
EXPECT
check "after a hang-up the log is whole" file_has corvane.log 'puts last'
check "after a hang-up the journal is whole" file_has corvane.jou 'puts last'

# Without a terminal there is no prompt and no result, and events run between commands.
printf 'after 0 {puts tick}\nexpr {6 * 7}\nset x {\n1}\nputs "x=$x"\n' >typed
input=typed run "$corvane" -mode tcl -quiet -nolog -nojournal
check "a pipe shows what commands print and no more" prints $'tick\nx=\n1'
check "the end of a pipe ends the session well" status_is 0

printf 'exit 4\nputs never\n' >typed
input=typed run "$corvane" -mode tcl -quiet -nolog -nojournal
check "exit in a pipe gives its status" status_is 4

half() { printf 'after 100 {puts tick}\nset x ' && sleep 1 && printf '1; puts last\n'; }
mkfifo commands
half >commands &
input=commands run "$corvane" -mode tcl -quiet -nolog -nojournal
wait
check "half a line in a pipe does not hold up events" prints $'tick\nlast'

run "$corvane" -mode tcl -quiet -nolog -nojournal
check "an empty input ends the session well" status_is 0

finish

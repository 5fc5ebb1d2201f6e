# The shell of tcl mode: prompt, results, errors, incomplete commands, the interrupt key.
source "$(dirname -- "${BASH_SOURCE[0]}")/lib.sh"

on_terminal "the shell on a terminal" <<'EXPECT'
start 80 xterm -nolog -nojournal
send "expr {6 * 7}\r"
see "the result of a command" {\r\n42\r\n.*% $}
send "nosuchcommand\r"
see "an error that names the command" {invalid command name "nosuchcommand"}
see "a prompt after an error" {% $}
send "set x \{a\r"
see "another prompt for the rest of a command" {corvane- $}
send "b\}\r"
see "the result of a command of two lines" {\r\na\r\nb\r\n.*% $}
send "while 1 {}\r"
see "the echo of a command that never ends" {while 1 \{\}[^\n]*\n}
sleep 1
send "\003"
see "that the interrupt key stops it" {Interrupted: .*% $}
send "expr {40 + 2}\r"
see "that the session lives on after the interrupt" {\r\n42\r\n}
send "exit 3\r"
finish 3
EXPECT

printf 'expr {6 * 7}\nnosuchcommand\nputs "still here"\n' >typed
input=typed run "$corvane" -mode tcl -nolog -nojournal
check "a script from a pipe goes on after an error" shows "still here"

printf 'puts "begun"\nproc pümp {} {\n    puts "half\nset never 1\n' >typed
input=typed run "$corvane" -mode tcl -nolog -nojournal
check "the commands before an unclosed brace are run" shows "begun"
check "a pipe that ends within a command is told, with the line where it begins" \
    shows "[Common 17-5019] The input ends within the command that begins with 'proc pümp {} {'; this command was not run."

printf 'error "the pump is dry"\n' >bad.tcl
printf 'puts "still here"\n' >typed
input=typed run "$corvane" -mode tcl -nolog -nojournal -source bad.tcl
check "a failing script leaves the shell running" shows "still here"
check "the error of the script is shown once" shows_line_once "the pump is dry"
check "the session then ends well" status_is 0

finish

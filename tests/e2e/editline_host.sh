# The line editor in other surroundings: a plain tclsh, no terminal, a terminal that goes away, garbage.
source "$(dirname -- "${BASH_SOURCE[0]}")/lib.sh"
export library=$app_root/lib/libzq_commontasks.so

on_terminal "tclsh hands its prompt over and gets it back" <<'EXPECT'
spawn -noecho tclsh8.6
see "tclsh's prompt" {% $}
send "load \$env(library) Omu_commontasks\r"
see "tclsh's prompt" {\n% $}
send "omu::start_editline app\r"
see "the editor's prompt" {app% $}
send "if 1 {\r"
see "its prompt for more" {app- $}
send "list in\[string repeat x 2\]\r"
see "its prompt for more" {app- $}
send "}\r"
see "the result" {\ninxx\r+\n.*app% $}
send "error \"broken\\n\"\r"
see "the error as it is, with one line end" {\nbroken\r+\n[^\n]*app% $}
send "set tcl_interactive\r"
see "that it is interactive" {\n1\r+\n.*app% $}
send "list one\r"
see "a result" {\none\r+\n.*app% $}
send "history\r"
see "Tcl's own history" {list one.*app% $}
send "\020\020\r"
see "the command from the history" {\none\r+\n.*app% $}
send "list last; omu::stop_editline\r"
see "tclsh's prompt, once" {\n% $}
see_nothing "another prompt"
send "expr {6 * 7}\r"
see "tclsh's own loop" {\n42\r+\n% $}
send "omu::start_editline again\r"
see "the editor once more" {again% $}
send "exit 3\r"
finish 3
EXPECT

cat >start.tcl <<'TCL'
load $env(library) Omu_commontasks
set before [list [info exists tcl_prompt1] [info exists tcl_prompt2]]
omu::start_editline app
TCL
on_terminal "a script that tclsh runs can start the editor" <<'EXPECT'
spawn -noecho tclsh8.6 start.tcl
see "the editor's prompt" {app% $}
send "set before\r"
see "a result" {\n0 0\r+\n.*app% $}
send "interp delete {}\r"
see "that it lives on" {app% $}
send "omu::stop_editline\r"
finish 0
EXPECT

# Batch input: no prompt, no results, errors.
cat >typed <<'TCL'
expr {6 * 7}
puts "shown"
error "broken"
if 1 {
    puts "in two"
}

puts "interactive: $tcl_interactive"
puts "last"
TCL
input=typed run tclsh8.6 start.tcl
check "input that is no terminal shows what commands print and no more" \
    prints $'shown\nin two\ninteractive: 0\nlast'
check "and the errors" test "$err" = broken
check "and the process ends well" status_is 0

printf 'puts "kept"\nomu::stop_editline\n' >typed
input=typed run tclsh8.6 start.tcl
check "a command can stop it there too" prints $'kept\n% '
printf 'puts "kept"\nputs {never ended' >typed
input=typed run tclsh8.6 start.tcl
check "a command that is not complete at the end is not run" prints kept
printf 'puts "no line end"' >typed
input=typed run tclsh8.6 start.tcl
check "the last line may lack its line end" prints "no line end"
run tclsh8.6 start.tcl
check "no input ends it" status_is 0
run bash -c 'exec tclsh8.6 start.tcl <&-'
check "nor does it need a standard input" status_is 0

echo 'omu::start_editline app' >app.tcl
printf 'expr {6 * 7}\nputs "shown"\nerror "broken"\n' >typed
input=typed run "$corvane" -mode tcl -quiet -nolog -nojournal -source app.tcl -notrace
check "a session without a terminal shows no prompt" shows_not 'app%'
check "and no results" shows_not 42
check "and what is printed" shows_line_once shown
check "and the error" shows_once broken

head -c 200000 /dev/urandom >garbage
input=garbage run bash -c 'timeout 60 "$0" -mode tcl -quiet -nolog -nojournal >shown 2>&1' "$corvane"
check "garbage on the standard input ends like any input" status_is 0
input=garbage run bash -c 'timeout 60 tclsh8.6 start.tcl >shown 2>&1'
check "also in the editor" test "$status" -lt 124

on_terminal "garbage on the terminal does no harm" <<'EXPECT'
start
set seed 7
proc random {} {return [expr {[set ::seed [expr {($::seed * 1103515245 + 12345) & 0x7fffffff}]] >> 16}]}
fconfigure $spawn_id -translation binary -encoding binary
for {set i 0} {$i < 300} {incr i} {
    set bytes {}
    for {set k 0} {$k < 40} {incr k} {
        # Keys that hold the terminal, interrupt or run something are left out.
        while {[set byte [expr {[random] % 256}]] in {3 10 13 19 26 28}} {}
        lappend bytes $byte
    }
    send -- [binary format c* $bytes]
    expect -timeout 0 -re .+ {}
}
after 500
expect -timeout 1 -re {.*nothingofthekind} {}
foreach end {"\033\[201~\003" "\003" "\003"} {
    send -- $end
    after 500
    expect -timeout 1 -re {.*nothingofthekind} {}
}
type "a result" "list alive\[string repeat x 2\]" {alivexx\r\n}
send "exit 5\r"
finish 5
EXPECT

# gone NAME: waits until the session that wrote its number to the file has ended; fails if it does not.
gone() {
    local pid
    pid=$(<"$1")
    for ((i = 0; i < 100; ++i)); do
        [[ -d /proc/$pid ]] || return 0
        sleep 0.1
    done
    printf 'still there, with %s ticks of processor time\n' "$(cut -d ' ' -f 14 "/proc/$pid/stat")"
    kill -KILL "$pid"
    return 1
}

for signal in "" "trap '' HUP; "; do
    rm -f corvane.log corvane.jou number
    on_terminal "a terminal goes away (${signal:-hang-up as usual})" <<EXPECT
set env(TERM) xterm
spawn -noecho bash -c "${signal}exec [lindex \$argv 0] -mode tcl -quiet"
see "a prompt" {corvane% \$}
type "the number" {set channel [open number w]; puts \$channel [pid]; close \$channel} {}
type "the last command" "puts last\[string repeat word 1\]" {lastword}
send "half a line"
see "the echo" {half a line}
close
exit 0
EXPECT
    check "the session ends (${signal:-hang-up as usual})" gone number
    check "the journal is whole" file_has corvane.jou 'puts last'
    check "the log is whole" file_has corvane.log 'puts last'
    check "the history is whole" file_has "$HOME/.local/state/corvane/history" 'puts last'
done

finish

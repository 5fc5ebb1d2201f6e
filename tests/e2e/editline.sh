# The line editor on a terminal: prompts, incomplete commands, keys, history, the hand-over to and from the
# host's own prompt, other threads, and input that is no terminal.
source "$(dirname -- "${BASH_SOURCE[0]}")/lib.sh"
export samples=$2

on_terminal "an incomplete command goes on behind the other prompt, and is one entry of the history" <<'EXPECT'
start
send "if 1 {\r"
see "the prompt for more" $more
send "puts \[incr count\]\[string repeat go 2\]\r"
see "the prompt for more again" $more
send "}\r"
see "that it ran once" {\r\n1gogo\r+\n.*corvane% $}
send "\033\[A"
see "the whole entry" {if 1 \{.*puts \[incr count\]\[string repeat go 2\].*\}}
send "\r"
see "that it runs as one" {\n2gogo\r+\n.*corvane% $}
type "one event" "history nextid" {\r\n4\r\n}
send "exit\r"
finish 0
EXPECT

on_terminal "an empty line is no entry, and what is typed wrongly is one" <<'EXPECT'
start
type "a result" "list first\[string repeat x 2\]" {\r\nfirstxx\r\n}
send "\r"
see "just a prompt for an empty line" "^$nothing*corvane% \$"
send "   \r"
see "just a prompt for blanks" "^$nothing*corvane% \$"
send "\033\[A\033\[A\r"
see "the last command that was one" {\nfirstxx\r\n.*corvane% $}
type "an error that is shown once" "nosuch" {^nosuch[^\n]*\nERROR: [^\n]*invalid command name "nosuch"\r\n[^\n]*}
send "exit\r"
finish 0
EXPECT

on_terminal "results get one line end, and an empty one shows nothing" <<'EXPECT'
start
type "one line end" {return "ends here\n"} {^[^\n]*\nends here\r\n[^\r\n]*}
type "one line end" {return "begins here"} {^[^\n]*\nbegins here\r\n[^\r\n]*}
type "nothing" {return ""} {^[^\n]*\n[^\r\n]*}
type "the lines within" {return "a\n\nb\n\n"} {^[^\n]*\na\r\n\r\nb\r\n\r\n[^\r\n]*}
type "an error with one line end" {error "broken\n"} {^[^\n]*\nERROR: [^\n]*broken\r\n[^\r\n]*}
send "exit 4\r"
finish 4
EXPECT

on_terminal "the keys for the end of file and Delete take the character under the cursor away" <<'EXPECT'
start
send "\004\004\004"
type "a session that goes on" "list on\[string repeat x 2\]" {\r\nonxx\r\n}
type "the first characters deleted" "XYZlist del\[string repeat x 2\]\001\004\004\004" {\ndelxx\r\n}
type "the first characters deleted" "XYZlist key\[string repeat x 2\]\001\033\[3~\033\[3~\033\[3~" {\nkeyxx\r\n}
type "nothing deleted at the end" "list end\[string repeat x 2\]\004\033\[3~" {\nendxx\r\n}
send "exit\r"
finish 0
EXPECT

on_terminal "a command that stops the editor gives the terminal to the host's prompt, and back" <<'EXPECT'
start
type "silent prompts of the host" {list [set tcl_prompt1] [set tcl_prompt2]} \
    {\{puts -nonewline \{\}\} \{puts -nonewline \{\}\}}
send "omu::stop_editline; list out\[string repeat x 2\]\r"
see "the host's prompt, once" {outxx\r\n[^\n%]*Corvane% $}
see_nothing "another prompt"
send "list plain\[string repeat x 2\]\r"
see "the host's loop" {plainxx\r\nCorvane% $}
send "set x \{\r"
see "the host's prompt for more" {> $}
send "\}\r"
see "the host's prompt" {Corvane% $}
send "omu::stop_editline\r"
see "nothing to stop" {Corvane% $}
send "after 50 {puts \[string repeat tick 2\]}\r"
see "a timer at the host's prompt" {ticktick}
send "omu::start_editline other\r"
see "the editor with another name" {other% $}
send "omu::start_editline other\r"
see "that it runs already" {editline is already running.*other% $}
send "if 1 {\r"
see "its prompt for more" {other- $}
send "}\r"
see "its prompt" {other% $}
send "omu::stop_editline; omu::start_editline third\r"
see "a new name at once" {third% $}
send "exit\r"
finish 0
EXPECT

on_terminal "what is typed ahead goes to whoever reads next" <<'EXPECT'
start
send "list one\[string repeat x 2\]\rgets stdin answer\rthe answer\r"
see "the first result" {\nonexx\r\n}
see "what the command has read" {\n10\r\n.*corvane% $}
send "omu::stop_editline\rlist host\[string repeat x 2\]\rlist last\[string repeat x 2\]\r"
see "a result at the host's prompt" {hostxx\r\n}
see "the next one" {lastxx\r\n.*Corvane% $}
send "exit\r"
finish 0
EXPECT

on_terminal "prompts of the user's own come back when the editor is stopped" <<'EXPECT'
start
send "omu::stop_editline; set tcl_prompt1 {puts -nonewline {mine: }}; set tcl_prompt2 {}\r"
see "the prompt of the user's own" {\nmine: $}
send "omu::start_editline app\r"
see "the editor's prompt" {app% $}
send "omu::stop_editline; info exists tcl_prompt2\r"
see "that a prompt that was empty is unset" {\r\n0\r\nmine: $}
send "exit\r"
finish 0
EXPECT

on_terminal "interrupts clear the line, or stop the command" <<'EXPECT'
start
send "set x {unfinished"
see "the echo" {unfinished}
send "\003"
see "a fresh prompt" {\r\n[^\n]*corvane% $}
send "if 1 {\r"
see "the prompt for more" $more
send "puts never\003"
see "a fresh prompt" {\r\n[^\n]*corvane% $}
type "that all of it is forgotten" "list new\[string repeat x 2\]" {\r\nnewxx\r\n}
send "\003"
see "a fresh prompt on an empty line" {\r\n[^\n]*corvane% $}
send "puts \[string repeat go 2\]; while 1 {}\r"
see "that it runs" {gogo\r+\n}
after 300
send "\003"
see "that it is stopped" {Interrupted: .*corvane% $}
send "vwait forever\r"
after 300
send "\003"
see "that it is stopped" {Interrupted: .*corvane% $}
type "that the session lives" "list still\[string repeat x 2\]" {\r\nstillxx\r\n}
send "exit\r"
finish 0
EXPECT

on_terminal "an interrupt breaks the line off also while a word is being completed" <<'EXPECT'
start
for {set i 0} {$i < 60} {incr i} {
    send "get_p\t"
    after [expr {$i % 6}]
    send "\003"
    see "a fresh prompt" {\n[^\n]*corvane% $}
    type "a result" "list got\[string repeat x 2\] $i" "\ngotxx $i\r\n"
}
send "exit\r"
finish 0
EXPECT

on_terminal "other threads are served while a line is typed, and the line is shown again" <<'EXPECT'
start
type "the samples" "load \$env(samples) Thread_samples" {}
type "the threads" "samples::eval_later 300 {set ::got \[string repeat foreign 2\]; puts \$::got}; after 0 {puts tick}" {after#}
send "list typed\[string repeat x 2"
see "what the thread shows, and the line below it" {foreignforeign\r+\n[^\n]*corvane% list typed\[string repeat x 2$}
send "\]\r"
see "the line as it was typed" {\ntypedxx\r\n.*corvane% $}
send "samples::say_later 300 {said by a thread}\r"
see "the prompt" $prompt
send "list typed"
see "the message, and the line below it" {INFO: said by a thread\r+\n[^\n]*corvane% list typed$}
send "\025vwait ::never\003"
see "the interrupt" {corvane% }
send "\025samples::flood 3000\r"
see "the prompt" $prompt
for {set i 0} {$i < 100} {incr i} {
    send "list "
    after 5
}
send "\025set flooded\r"
see "a count" {\n\d+\r\n.*corvane% $}
type "all of them served" {while {$flooded < 3000} {after 10; update}; set flooded} {\n3000\r\n}
send "samples::eval_later 300 {exit 6}\r"
finish 6
EXPECT

on_terminal "the prompt begins a row of its own behind output without a line end" <<'EXPECT'
start 40
set row [string repeat " " 40]
type "what a command shows" "puts -nonewline \[string repeat go 2\]" "\ngogo$row\r\[^\n]*"
type "what it shows on the other channel" "puts -nonewline stderr \[string repeat go 2\]" "\ngogo$row\r\[^\n]*"
type "the samples" "load \$env(samples) Thread_samples" {}
send "samples::eval_later 300 {puts -nonewline \[string repeat foreign 2\]}\r"
see "the prompt" $prompt
send "list typed"
see "what the thread shows, and the line in a row of its own" "foreignforeign$row\r\[^\n]*corvane% list typed\$"
send "\003"
see "a fresh prompt" $prompt
send "exit\r"
finish 0
EXPECT

on_terminal "timers wait for a command that enters the event loop" <<'EXPECT'
start
type "a timer" "after 50 {set fired 1}" {after#}
after 500
type "that it waited" "info exists fired" {\r\n0\r\n}
type "that it comes" "update; info exists fired" {\r\n1\r\n}
send "exit\r"
finish 0
EXPECT

printf 'set tabs "a\tb\\tc"\n' >block
for ((i = 1; i <= 10000; ++i)); do printf 'incr total %d\t;# get_p\t\n' "$i"; done >>block
on_terminal "a pasted block is one edit, runs nothing before Enter and completes nothing" <<'EXPECT'
start
set channel [open block]
set block [read $channel]
close $channel
paste "puts run\[string repeat x 2\]\nget_p\t\tfoo\t\nlist a\tb"
see "the block" {puts run.*list a +b}
see_nothing "anything run"
send "\003"
see "a fresh prompt" {corvane% $}
foreach count {1000 10001} {
    paste "set total 0\n[join [lrange [split $block \n] 0 $count-1] \n]\nlist sum \$total"
    see "the end of the block" {list sum \$total}
    send "\r"
    see "the result of all" "\nsum [expr {($count - 1) * $count / 2}]\r\n.*corvane% $"
}
type "one event each" "history nextid" {\r\n4\r\n}
type "a tab that is text" {string length $tabs} {\r\n5\r\n}
paste "list half"
send " way\r"
see "a block within a line" {\nhalf way\r\n.*corvane% $}
send "exit\r"
finish 0
EXPECT

on_terminal "long lines and characters of any width are taken as they are" <<'EXPECT'
start
set line [string repeat abcdefghij 10000]
type "a line of 100000 characters" "string length $line" {\n100000\r\n}
type "umlauts" "string length \u00e4\u00f6\u00fc" {\r\n3\r\n}
type "wide characters" "string length \u65e5\u672c\u8a9e" {\r\n3\r\n}
type "them shown" "list \u65e5\u672c x\[string repeat y 2\] \u8a9e" "\n\u65e5\u672c xyy \u8a9e\r\n"
type "one of them deleted" "string length \u65e5\u672c\u8a9e\010" {\n2\r\n}
send "\[format %c 128512\]"
send "\003"
see "a fresh prompt" {corvane% $}
fconfigure $spawn_id -translation binary -encoding binary
type "what is no character left out" "string length a\xff\xfe\xc3b" {\n2\r\n}
send "exit\r"
finish 0
EXPECT

on_terminal "a window of 20 columns, and one that changes its size" <<'EXPECT'
start 20
type "a line of several rows" "string length [string repeat 0123456789 10]" {\n100\r\n}
send "list [string repeat abcde 10]"
see "several rows" {cde$}
exec stty columns 60 <$spawn_out(slave,name)
see "the line drawn anew" "corvane% list [string repeat abcde 9]"
send "\r"
see "the line as it was" "\n[string repeat abcde 10]\r\n.*corvane% $"
exec stty columns 1 rows 1 <$spawn_out(slave,name)
send "list [string repeat a 30]\[string repeat x 2\]\r"
see "a result in the smallest window" {aaxx}
exec stty columns 0 rows 0 <$spawn_out(slave,name)
send "exit 2\r"
finish 2
EXPECT

on_terminal "terminals that can do little, or are not known" <<'EXPECT'
foreach type {dumb nosuchterminal unknown {}} {
    start 80 $type
    type "a result" "list a\[string repeat x 2\]" {axx\r\n}
    send "list [string repeat b 100]"
    see "the echo" {b{20}}
    send "\003"
    see "a fresh prompt" {corvane% $}
    type "the samples" "load \$env(samples) Thread_samples" {}
    send "samples::eval_later 200 {puts \[string repeat foreign 2\]}\r"
    see "another thread" {foreignforeign.*corvane% $}
    if {[string first "\033" $expect_out(buffer)] >= 0} {fail "an escape sequence on terminal type '$type'"}
    send "exit\r"
    finish 0
}
EXPECT

finish

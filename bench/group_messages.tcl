# What a message costs that goes into the log, and one that a limit stops. tclsh runs the first half, which has
# Corvane run the second.

set here [file dirname [file normalize [info script]]]
source [file join $here measure.tcl]

if {[catch {package present omu::commontasks}]} {
    set build [file normalize [lindex $argv 0]]
    set yardstick [file join $build bench messages_yardstick]
    exec c++ -std=c++20 -O3 -DSPDLOG_COMPILED_LIB [file join $here messages_yardstick.cpp] -o $yardstick \
        -lspdlog -lfmt -pthread 2>@stderr
    close [file tempfile log corvane_bench]
    # Messages go to the console too, so that the rows take another way.
    exec [file join $build root bin corvane] -mode batch -quiet -log $log -nojournal -notrace \
        -source [file normalize [info script]] \
        -tclargs [file join $build bench libbench_messages.so] $yardstick $log </dev/null >/dev/null
    set rows [open $log.rows]
    puts -nonewline [read $rows]
    close $rows
    file delete $log $log.rows {*}[glob -nocomplain [file rootname $log]_*.backup*]
    exit
}

lassign $argv library yardstick log
load $library Bench_messages
set row_channel [open $log.rows w]
set other $log.yardstick
set line "WARNING: \[Common 17-1\] The file 'some_file.log' cannot be opened for writing; the session continues."

# Microseconds for one turn of a loop in a proc, without the start of the loop.
proc cost {turns runs body} {
    proc loop {file} "for {set i 0} {\$i < $turns} {incr i} {$body}; flush \$file"
    set file [open $::other w]
    set result [median $runs {expr {[lindex [time {loop $file}] 0] / double($turns)}}]
    close $file
    return $result
}

set text [regsub {^.*?\] } $line {}]
set send [list send_msg_id {Common 17-1} WARNING $text]
set_param messaging.defaultLimit 2147483647

set shown [cost 1000000 3 $send]
bench::no_console
set puts [cost 1000000 3 "puts \$file [list $line]"]
set sent [cost 1000000 3 $send]
row "send_msg_id into the log" $sent "Tcl puts of the line to a file" $puts us "<= 3"
row "send_msg_id into the log and to /dev/null" $shown "Tcl puts of the line to a file" $puts us

foreach {threads words} {1 "a message from C++ into the log" 8 "the same on 8 threads at once"} {
    row $words [median 3 {bench::send_from_threads 1000000 $threads}] \
        "spdlog's synchronous file logger" [median 3 {exec $yardstick $other 1000000 $threads}] us "<= 1.5"
}

# Rules that touch none of the messages sent: by id, or by strings that each text is searched for.
proc without_rules {} {
    foreach command [lrange [split [debug::get_msg_control_rules -as_tcl] \n] 0 end-1] {
        reset_msg_config -ruleid [lindex $command end]
    }
}
set plain [median 5 {bench::send_from_threads 1000000 1}]
foreach {words count options aim} {
    "10 rules by id and strings" 5 {{-id "Other 1-$i"} {-string "cell_$i of"}} "<= 3"
    "10,000 rules by id" 10000 {{-id "Other 1-$i"}} "<= 1.2"
    "10,000 rules by strings" 10000 {{-string "cell_$i of"}} "<= 3"
    "10,000 rules by expressions" 10000 {{-regexp -string "{^cell_$i \[a-f\]+}"}} "<= 3"
} {
    for {set i 0} {$i < $count} {incr i} {
        foreach qualifiers $options {
            set_msg_config {*}[subst $qualifiers] -suppress
        }
    }
    row "a message with $words" [median 5 {bench::send_from_threads 1000000 1}] "the same without rules" $plain us $aim
    without_rules
}
set_msg_config -id {Common 17-138} -suppress
row "a message that a rule suppresses" [median 5 {bench::send_from_threads 1000000 1}] "one that is shown" $plain us \
    "<= 1.5"
without_rules

# A message database, as far as the sender notices it, and until it is whole.
set database $other.db
create_msg_db $database
row "send_msg_id with an open message database" [cost 1000000 3 $send] "the same without" $sent us "<= 1.5"
close_msg_db $database
set beside [median 3 {
    create_msg_db $database
    set result [bench::send_from_threads 1000000 1]
    close_msg_db $database
    set result
}]
row "a message from C++ with an open message database" $beside "the same without" $plain us "<= 2.5"
set until_whole [median 3 {
    create_msg_db $database
    expr {[lindex [time {bench::send_from_threads 1000000 1; close_msg_db $database}] 0] / 1e6}
}]
exec sqlite3 -csv $database "select time, severity, default_severity, id, subsystem, text, suppressed, command, thread,
    mask from messages" >$other
row "a message in a database, until 1,000,000 are whole" $until_whole \
    "the sqlite3 program importing such rows from a text file" [median 3 {
    set result [expr {[lindex [time {
        exec sqlite3 $other.import "create table messages(time, severity, default_severity, id, subsystem, text,
            suppressed, command, thread, mask)" ".import --csv $other messages"
    }] 0] / 1e6}]
    file delete $other.import
    set result
}] us "<= 1"
file delete $database

set_param messaging.defaultLimit 0
row "send_msg_id that a limit stops" [cost 200000 9 $send] \
    "a task that reads the same arguments" [cost 200000 9 [lreplace $send 0 0 bench::send_nothing]] us "<= 1.2"
file delete $other

# What sourcing costs with and without a trace, and what a traced script pays for it in its procedures. tclsh runs
# the first half, which has Corvane run the second.

set here [file dirname [file normalize [info script]]]
source [file join $here measure.tcl]

if {[catch {package present omu::commontasks}]} {
    set build [file normalize [lindex $argv 0]]
    close [file tempfile log corvane_bench]
    # Tcl's own source neither starts a trace nor forbids one. The console is turned off, so that the rows take
    # another way.
    exec [file join $build root bin corvane] -mode tcl -quiet -log $log -nojournal \
        -tclargs [file join $build bench libbench_source.so] $log \
        << [list tcl::source [file normalize [info script]]] >/dev/null
    set rows [open $log.rows]
    puts -nonewline [read $rows]
    close $rows
    file delete $log {*}[glob $log.*] {*}[glob -nocomplain [file rootname $log]_*.backup*]
    exit
}

lassign $argv library log
load $library Bench_source
bench::no_console
set row_channel [open $log.rows w]

proc script {name text} {
    set file [open $::log.$name w]
    puts $file $text
    close $file
    return $::log.$name
}

# Microseconds that each of some commands takes, run in turn so that all see the same machine.
proc times {runs args} {
    foreach command $args {uplevel #0 $command}
    for {set i 0} {$i < $runs} {incr i} {
        foreach command $args {
            lappend taken($command) [lindex [time {uplevel #0 $command}] 0]
        }
    }
    lmap command $args {
        tcl::lindex [tcl::lsort -real $taken($command)] [expr {$runs / 2}]
    }
}

set lines {}
for {set i 0} {$i < 2000} {incr i} {
    lappend lines "set value($i) \[expr {$i * 3 + 1}\]" "proc twice$i {x} {return \[expr {\$x * 2}\]}" \
        "twice$i $i" "if {\$value($i) > 50} {incr many} else {incr few}" \
        "append text \"item $i of \[string length \$value($i)\] digits\\n\""
}
set large [script large.tcl "set text {}\n[join $lines \n]"]

lassign [times 15 [list tcl::source $large] [list source -notrace $large] \
    [list bench::empty_trace tcl::source $large] [list bench::empty_trace source -notrace $large] \
    [list source $large]] plain untraced empty empty_direct traced
row "source -notrace of 10,000 lines" $untraced "Tcl's own source" $plain us "<= 1.1"
row "traced source of them into the log" $traced "Tcl's own source, an empty trace" $empty us "<= 1.5"
row "traced source of them into the log" $traced "source -notrace, an empty trace" $empty_direct us "<= 1.5"

foreach {words turns body} {
    "commands that Tcl compiles" 1000000 {set x [expr {$i * 2}]}
    "calls of a procedure" 300000 {pass $i}
    "calls of a replaced command" 300000 {lindex {a b c} 1}
} {
    proc pass {x} {return $x}
    proc loop {} "for {set i 0} {\$i < $turns} {incr i} {$body}"
    set file [script loop.tcl loop]
    lassign [times 9 [list source -notrace $file] [list source $file]] untraced traced
    row "a traced script's loop: $words" [expr {$traced / double($turns)}] \
        "the same untraced" [expr {$untraced / double($turns)}] us "<= 1.1"
}

# Microseconds for one call, from a loop in a proc.
proc cost {calls command} {
    proc loop {} "for {set i 0} {\$i < $calls} {incr i} {$command}"
    loop
    return [median 9 {expr {[lindex [time loop] 0] / double($calls)}}]
}

set parameters(general.maxThreads) 8
row "get_param" [cost 100000 {get_param general.maxThreads}] "Tcl's set of an array element" \
    [cost 100000 {set ::parameters(general.maxThreads)}] us
row "set_param" [cost 100000 {set_param general.maxThreads 4}] "Tcl's set of an array element" \
    [cost 100000 {set ::parameters(general.maxThreads) 4}] us

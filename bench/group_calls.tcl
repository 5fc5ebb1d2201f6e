# What a call of a task costs. tclsh runs the first half, which has Corvane run the second.

set here [file dirname [file normalize [info script]]]
source [file join $here measure.tcl]

if {[catch {package present omu::commontasks}]} {
    set build [lindex $argv 0]
    puts [exec [file join $build root bin corvane] -mode batch -quiet -nolog -nojournal -notrace \
        -source [file normalize [info script]] -tclargs [file join $build bench libbench_calls.so] </dev/null]
    exit
}

load [lindex $argv 0] Bench_calls
package require cmdline

proc copy_proc {args} {
    set parameters [cmdline::getoptions args {{count.arg 1 ""} {suffix.arg "" ""} {force ""}}]
    dict with parameters {
        lassign $args from to
        return [expr {([string length $from] + [string length $to] + [string length $suffix]) * $count + $force}]
    }
}

# Microseconds for one call, from a loop in a proc. The loop's own share is in both numbers of a row.
proc cost {calls command} {
    proc loop {} "for {set i 0} {\$i < $calls} {incr i} {$command}"
    loop
    return [median 9 {expr {[lindex [time loop] 0] / double($calls)}}]
}

set words {-count 3 -suffix .copy -force one.v two.v}
foreach command {bench::copy_task bench::copy_command copy_proc} {
    if {[set answer [$command {*}$words]] != 46} {
        error "$command answers $answer"
    }
}

row "task without options" [cost 100000 bench::empty_task] \
    "C command that does nothing" [cost 100000 bench::empty_command] us "<= 5"
set task [cost 20000 "bench::copy_task $words"]
row "task with 3 options and 2 positionals" $task \
    "C command, the same by hand" [cost 20000 "bench::copy_command $words"] us "<= 12"
row "task with 3 options and 2 positionals" $task \
    "Tcl proc with tcllib's cmdline" [cost 2000 "copy_proc $words"] us "<= 0.1"

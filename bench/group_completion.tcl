# What the Tab key costs. tclsh runs the first half, which has Corvane run the second.

set here [file dirname [file normalize [info script]]]
source [file join $here measure.tcl]

# Microseconds for one completion by bash, which has 5,000 functions, or 1,000 files where it stands.
proc bash_cost {calls completion} {
    set script {
        for ((i = 0; i < 5000; i++)); do eval "command_$i() { :; }"; done
        start=${EPOCHREALTIME/[.,]/}
        for ((i = 0; i < CALLS; i++)); do COMPLETION >/dev/null; done
        echo $((${EPOCHREALTIME/[.,]/} - start))
    }
    set script [string map [list CALLS $calls COMPLETION $completion] $script]
    # Without the programs of the search path, which tclsh and Corvane do not look at either.
    return [median 5 {expr {[exec env PATH=/nonexistent [auto_execok bash] --norc -c $script] / double($calls)}}]
}

if {[catch {package present omu::commontasks}]} {
    set build [file normalize [lindex $argv 0]]
    set directory [file tempfile name corvane_bench]
    close $directory
    file delete $name
    file mkdir $name
    set before [pwd]
    cd $name
    for {set i 0} {$i < 1000} {incr i} {close [open file_$i w]}
    try {
        puts [exec [file join $build root bin corvane] -mode batch -quiet -nolog -nojournal -notrace \
            -source [file join $here group_completion.tcl] \
            -tclargs [file join $build bench libbench_completion.so] </dev/null]
    } finally {
        cd $before
        file delete -force $name
    }
    exit
}

load [lindex $argv 0] Bench_completion

# Microseconds for one call, from a loop in a proc.
proc cost {calls command} {
    proc loop {} "for {set i 0} {\$i < $calls} {incr i} {$command}"
    loop
    return [median 9 {expr {[lindex [time loop] 0] / double($calls)}}]
}

for {set i 0} {$i < 5000} {incr i} {proc command_$i {} {}}
set count [llength [omu::info_commands]]
if {$count < 5000} {error "completion lists $count commands"}
if {[bench::complete ""] < 60000} {error "completion writes [bench::complete {}] bytes"}

set tcl [cost 20 {tcl::lsort [info commands]}]
set bash [bash_cost 20 {compgen -c}]
set tab [cost 20 {bench::complete ""}]
row "Tab at an empty prompt, 5,000 commands" $tab "tclsh's lsort \[info commands\]" $tcl us "<= 4"
row "Tab at an empty prompt, 5,000 commands" $tab "bash's compgen -c" $bash us "<= 1"
row "Tab behind a name of 1,111 commands" [cost 50 {bench::complete command_1}] "bash's compgen -c of it" \
    [bash_cost 50 {compgen -c command_1}] us "<= 1"
row "Tab behind a name of one command" [cost 200 {bench::complete command_4999}] "bash's compgen -c of it" \
    [bash_cost 50 {compgen -c command_4999}] us "<= 1"
row "Tab behind an option" [cost 1000 {bench::complete "get_property -o"}] "bash's compgen -W" \
    [bash_cost 1000 {compgen -W "-min -max -name -object" -- -o}] us "<= 1"
row "Tab behind a parameter" [cost 1000 {bench::complete "get_param tcl.all"}] "bash's compgen -W" \
    [bash_cost 1000 {compgen -W "tcl.allow tcl.notrace tcl.undo" -- tcl.all}] us
row "Tab behind a file of 1,000" [cost 20 {bench::complete "source file_99"}] "bash's compgen -f" \
    [bash_cost 20 {compgen -f file_99}] us "<= 3"

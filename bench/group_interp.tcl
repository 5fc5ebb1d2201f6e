# What further interpreters, substitution and encrypted scripts cost. tclsh runs the first half, which has Corvane
# run the second.

set here [file dirname [file normalize [info script]]]
source [file join $here measure.tcl]

if {[catch {package present omu::commontasks}]} {
    set build [lindex $argv 0]
    close [file tempfile scratch corvane_bench]
    puts [exec [file join $build root bin corvane] -mode batch -quiet -nolog -nojournal -notrace \
        -source [file normalize [info script]] -tclargs $scratch </dev/null]
    file delete {*}[glob $scratch*]
    exit
}

lassign $argv scratch

# Microseconds for one call, from a loop in a proc. The command comes in a variable, so that it is not compiled into
# the loop.
proc cost {calls command args} {
    return [median 9 {expr {[lindex [time {
        for {set i 0} {$i < $calls} {incr i} {$command {*}$args}
    }] 0] / double($calls)}}]
}
# The same with a text of its own for each call.
proc cost_of_new {calls command text} {
    return [median 9 {expr {[lindex [time {
        for {set i 0} {$i < $calls} {incr i} {$command "$text$i"}
    }] 0] / double($calls)}}]
}

set ::name corvane
set ::value(k) 5
foreach {what text} {
    "a text without signs" {there is nothing to substitute in this text}
    "three variables" {a $::name b $::value(k) c ${::name} d}
    "two commands" {a [string length $::name] b [expr {$::value(k) * 2}] c}
} {
    if {[subst $text] ne [tcl::subst $text]} {error "subst differs in: $text"}
    row "subst of $what, again" [cost 20000 subst [format %s $text]] "Tcl's subst" [cost 20000 tcl::subst [format %s $text]] us
    row "subst of $what, each text new" [cost_of_new 20000 subst $text] \
        "Tcl's subst" [cost_of_new 20000 tcl::subst $text] us "<= 1.5"
}
set long [string repeat {line $::name of [string length $::name] \n} 2000]
row "subst of 80 kB, each text new" [cost_of_new 20 subst $long] "Tcl's subst" [cost_of_new 20 tcl::subst $long] us "<= 1.5"

proc plain_interp {} {interp delete [interp create]}
proc slave_interp {} {omu::delete_slave [omu::create_slave]}
# How many commands a plain interpreter would need to be given.
set commands [llength [concat {*}[lmap space {::omu ::common ::debug} {info commands ${space}::*}]]]
proc plain_interp_with_commands {} {
    set slave [interp create]
    for {set i 0} {$i < $::commands} {incr i} {interp alias $slave cmd$i {} list}
    interp delete $slave
}
foreach {what script} {ours slave_interp plain plain_interp filled plain_interp_with_commands} {
    $script
    set each($what) [median 15 {lindex [time $script 10] 0}]
}
row "create_slave and delete_slave" $each(ours) "a plain Tcl interpreter" $each(plain) us
row "create_slave and delete_slave" $each(ours) "a plain one with $commands aliases" $each(filled) us "<= 3"

debug::create_script_key $scratch.key
set_param source.keyFile $scratch.key
foreach {what lines turns} {"10 lines" 10 200 "10,000 lines" 10000 9} {
    set script {}
    for {set i 0} {$i < $lines} {incr i} {append script "set value($i) \[expr {$i * 3 + 1}\]\n"}
    set file [open $scratch.tcl w]
    puts -nonewline $file $script
    close $file
    debug::encrypt_script -force $scratch.tcl $scratch.enc
    set plain [median 9 {lindex [time {source -notrace $scratch.tcl} $turns] 0}]
    set encrypted [median 9 {lindex [time {source -notrace $scratch.enc} $turns] 0}]
    row "source of an encrypted script of $what" $encrypted "source of it in plain" $plain us
}
set text [string repeat "# a comment of forty-eight characters in a line\n" 400000]
set file [open $scratch.tcl w]
puts -nonewline $file $text
close $file
row "encrypting 19 MB" [median 3 {lindex [time {debug::encrypt_script -force $scratch.tcl $scratch.enc}] 0}] \
    "copying it" [median 3 {lindex [time {file copy -force $scratch.tcl $scratch.copy}] 0}] us

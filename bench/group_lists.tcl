# What the list commands cost on collections and on plain lists. tclsh runs the first half, which has Corvane run
# the second. Tcl's own commands are called through a variable, so that they are not compiled inline either.

set here [file dirname [file normalize [info script]]]
source [file join $here measure.tcl]

if {[catch {package present omu::commontasks}]} {
    set build [lindex $argv 0]
    puts [exec [file join $build root bin corvane] -mode batch -quiet -nolog -nojournal -notrace \
        -source [file normalize [info script]] \
        -tclargs [file join $build tests tcl builtin libcollection_samples.so] </dev/null]
    exit
}

load [lindex $argv 0] Collection_samples

# Microseconds of one walk over all elements, with an empty body.
proc walk {command values} {
    return [lindex [time {$command x $values {}}] 0]
}

# Microseconds for one call, from a loop in a proc. The loop's own share is in both numbers of a row.
proc cost {calls command args} {
    return [median 9 {expr {[lindex [time {
        for {set i 0} {$i < $calls} {incr i} {$command {*}$args}
    }] 0] / double($calls)}}]
}

set count 1000000
set cells [samples::many $count]
set first [walk foreach $cells]
set names [split [join $cells \n] \n]
if {[llength $cells] != $count || [llength $names] != $count} {
    error "the measurement has [llength $cells] objects and [llength $names] names"
}
walk tcl::foreach $names
set plain [median 5 {walk tcl::foreach $names}]

row "foreach over 1,000,000 objects, first time" $first \
    "Tcl's foreach over their names" $plain us "<= 4"
row "foreach over 1,000,000 objects, again" [median 5 {walk foreach $cells}] \
    "Tcl's foreach over their names" $plain us "<= 2"
row "foreach over 1,000,000 names" [median 5 {walk foreach $names}] \
    "Tcl's foreach over the same" $plain us "<= 1.1"
set few [lrange $names 0 9]
row "foreach over 10 names" [cost 20000 foreach x $few {}] \
    "Tcl's foreach over the same" [cost 20000 tcl::foreach x $few {}] us "<= 1.1"
proc collect {command objects} {
    set all [samples::objects]
    tcl::foreach x $objects {$command all $x}
    return [llength $all]
}
proc collect_names {command names} {
    set all {}
    tcl::foreach x $names {$command all $x}
    return [llength $all]
}
set objects [omu::col2list -list $cells]
if {[collect lappend $objects] != $count} {error "lappend does not collect"}
row "lappend of 1,000,000 objects, one by one" [median 3 {lindex [time {collect lappend $objects}] 0}] \
    "Tcl's lappend of their names" [median 3 {lindex [time {collect_names tcl::lappend $names}] 0}] us
row "llength of 1,000,000 objects" [cost 200000 llength $cells] \
    "Tcl's llength of their names" [cost 200000 tcl::llength $names] us "<= 1.5"
row "lindex of 1,000,000 objects" [cost 200000 lindex $cells 500000] \
    "Tcl's lindex of their names" [cost 200000 tcl::lindex $names 500000] us "<= 1.5"
row "lindex of 1,000,000 objects, end-1" [cost 200000 lindex $cells end-1] \
    "Tcl's lindex of their names" [cost 200000 tcl::lindex $names end-1] us "<= 1.5"
row "lindex of names" [cost 200000 lindex $names 500000] \
    "Tcl's lindex of the same" [cost 200000 tcl::lindex $names 500000] us
row "lrange of names" [cost 100000 lrange $few 1 3] "Tcl's lrange of the same" [cost 100000 tcl::lrange $few 1 3] \
    us "<= 1.5"
row "lrange of 1,000,000 objects, 3 of them" [cost 20000 lrange $cells 1 3] \
    "Tcl's lrange of their names" [cost 100000 tcl::lrange $names 1 3] us
row "catch of a short script" [cost 200000 catch {set y 1}] \
    "Tcl's catch of the same" [cost 200000 tcl::catch {set y 1}] us

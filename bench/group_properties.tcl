# What properties cost to read, set and report. tclsh runs the first half, which has Corvane run the second.

set here [file dirname [file normalize [info script]]]
source [file join $here measure.tcl]

if {[catch {package present omu::commontasks}]} {
    set build [lindex $argv 0]
    puts [exec [file join $build root bin corvane] -mode batch -quiet -nolog -nojournal -notrace \
        -source [file normalize [info script]] \
        -tclargs [file join $build tests tcl property libproperty_samples.so] </dev/null]
    exit
}

load [lindex $argv 0] Property_samples

# Microseconds for one call, from a loop in a proc. The loop's own share is in every number.
proc cost {calls command} {
    proc loop {} "global one; for {set i 0} {\$i < $calls} {incr i} {$command}"
    loop
    return [median 9 {expr {[lindex [time loop] 0] / double($calls)}}]
}

# Microseconds of a script, the median of some runs. What it made is freed between the runs.
proc once {script {count 5}} {
    set kept [uplevel #0 $script]
    return [median $count {unset -nocomplain kept; lindex [time {set kept [uplevel #0 $script]}] 0}]
}

set one [sample::gate one 3]
if {[get_property fanout $one] != 3} {error "get_property answers [get_property fanout $one]"}

set empty [cost 100000 {sample::empty_task fanout $one}]
set read [cost 100000 {get_property fanout $one}]
row "get_property of one object, over the call" [expr {$read - $empty}] "half a microsecond" 0.5 us "<= 1"
row "get_property of one object" $read "task with the same words that does nothing" $empty us

set count 1000000
set gates [sample::gates $count]
if {[get_property fanout $gates] ne [sample::fanouts $gates]} {error "the fanouts differ"}
if {[get_property name $gates] ne [sample::names $gates]} {error "the names differ"}
row "get_property of 1,000,000 numbers" [once {get_property fanout $gates}] \
    "C loop that fills a Tcl list" [once {sample::fanouts $gates}] us "<= 3"
row "get_property of 1,000,000 texts" [once {get_property name $gates}] \
    "C loop that fills a Tcl list" [once {sample::names $gates}] us "<= 3"
row "get_property -max of 1,000,000 numbers" [once {get_property -max fanout $gates}] \
    "C loop that fills a Tcl list" [once {sample::fanouts $gates}] us

set names [sample::names $gates]
foreach name $names {}
row "foreach over 1,000,000 objects that reads a property" \
    [once {foreach gate $gates {get_property fanout $gate}} 3] \
    "Tcl's foreach over their names, a task in its body" \
    [once {tcl::foreach name $names {sample::empty_task fanout $name}} 3] us "<= 4"

set reading [once {get_property weight $gates}]
row "set_property on 1,000,000 objects" [once {set_property weight 2 $gates} 3] "get_property of the same" $reading us
row "undo of it" [once {undo -quiet} 3] "get_property of the same" $reading us
row "set_property -dict of 3 properties on 1,000,000 objects" \
    [once {set_property -dict {weight 3 keep 1 note x} $gates} 3] "get_property of one of them" $reading us

for {set i 0} {$i < 188} {incr i} {create_property p$i gate -type int -default_value $i}
if {[llength [list_property $one]] != 200} {error "the object has [llength [list_property $one]] properties"}
set all [list_property $one]
row "report_property of 200 properties" [once {report_property -return_string $one} 9] \
    "get_property of each" [once {foreach name $all {get_property $name $one}} 9] us

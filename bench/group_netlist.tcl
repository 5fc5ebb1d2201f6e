# What a netlist of 1,000,000 cells costs to read, to hold and to ask. tclsh runs the first half, which makes the
# netlist once and has Corvane run the second. All times are those that the processor works, which another
# program on the machine does not change much; what is compared runs in turn.

set here [file dirname [file normalize [info script]]]
source [file join $here measure.tcl]

# Processor time in microseconds and peak memory in bytes, as the kernel accounts for a program from start to end.
proc cost_of {args} {
    close [file tempfile figures corvane_bench]
    exec /usr/bin/time -o $figures -f "%U %S %M" {*}$args >/dev/null 2>/dev/null </dev/null
    set channel [open $figures]
    lassign [gets $channel] user system peak
    close $channel
    file delete $figures
    return [list [expr {($user + $system) * 1e6}] [expr {$peak * 1024}]]
}

if {[catch {package present omu::commontasks}]} {
    set build [file normalize [lindex $argv 0]]
    set generator [file join $build bench gen_netlist]
    set directory [file join [file dirname $build] bench]
    file mkdir $directory
    foreach {variable cells} {large 1000000 small 1000} {
        set $variable [file join $directory cells_$cells.json]
        set netlist [set $variable]
        if {![file exists $netlist] || [file mtime $netlist] < [file mtime $generator]} {
            exec $generator --cells $cells --output $netlist.new
            file rename -force $netlist.new $netlist
        }
    }
    set corvane [list [file join $build root bin corvane] -mode batch -quiet -nolog -nojournal -notrace]
    puts [exec {*}$corvane -source [file normalize [info script]] \
        -tclargs [file join $build bench libbench_netlist.so] $large $small </dev/null]

    close [file tempfile script corvane_bench]
    set channel [open $script w]
    puts $channel [list read_netlist $large]
    close $channel
    foreach run {1 2 3} {
        lassign [cost_of {*}$corvane -source $script] time peak
        lappend times $time
        lappend peaks $peak
    }
    file delete $script
    if {[catch {cost_of yosys -q -p "read_json $large"} theirs]} {
        puts stderr "Yosys could not read the netlist, which takes it 8 GiB; no rows are compared with it: $theirs"
        exit
    }
    row "reading a netlist of 1,000,000 cells, whole program" [lindex [lsort -real $times] 1] \
        "Yosys, read_json of the same file" [lindex $theirs 0] us "<= 0.1"
    row "its peak memory" [lindex [lsort -integer $peaks] end] \
        "Yosys, read_json of the same file" [lindex $theirs 1] bytes "<= 0.3334"
    exit
}

lassign $argv library large small
load $library Bench_netlist

# Microseconds of each of some scripts, the medians of runs in turn. What a script made is freed between the runs,
# and its first run, which warms up, is not counted.
proc in_turn {runs args} {
    for {set run 0} {$run <= $runs} {incr run} {
        foreach script $args {
            unset -nocomplain ::kept
            set time [yardstick::cpu_time "set ::kept \[$script\]"]
            if {$run > 0} {lappend taken($script) $time}
        }
    }
    unset ::kept
    return [lmap script $args {
        lindex [lsort -real $taken($script)] [expr {$runs / 2}]
    }]
}

# Bytes of this process that are in memory.
proc resident {} {
    set channel [open /proc/self/smaps_rollup]
    set text [read $channel]
    close $channel
    regexp {Rss:\s+(\d+) kB} $text -> kilobytes
    return [expr {$kilobytes * 1024}]
}

set count 1000000
set before [resident]
read_netlist $large
set with_netlist [resident]
set cells [get_cells -hierarchical]
set with_cells [resident]
if {[llength $cells] != $count} {error "the netlist has [llength $cells] cells"}
row "memory of 1,000,000 cells with nets and pins" [expr {$with_netlist - $before}] \
    "its file" [file size $large] bytes
row "memory of a collection of the cells" [expr {$with_cells - $with_netlist}] \
    "the netlist's file" [file size $large] bytes

# Tcl's own command is called through a variable, so that it is not compiled inline either.
set plain_foreach tcl::foreach
set names [get_property name $cells]
set before [resident]
set walk [yardstick::cpu_time {foreach cell $::cells {}}]
set with_values [resident]
lassign [in_turn 5 {foreach cell $::cells {}} {$::plain_foreach cell $::names {}}] again plain
row "foreach over 1,000,000 cells, first time" $walk "Tcl's foreach over their names" $plain us "<= 4"
row "foreach over 1,000,000 cells, again" $again "Tcl's foreach over their names" $plain us "<= 2"
row "memory of the values of 1,000,000 cells" [expr {$with_values - $before}] \
    "the collection of the cells" [expr {$with_cells - $with_netlist}] bytes
unset names

set first [yardstick::cpu_time {get_cells {stage7000_lut[7]}}]
foreach {variable stage} {large_names 7000 small_names 7} {
    set $variable {}
    for {set i 0} {$i < 32} {incr i} {lappend $variable stage${stage}_lut\[$i\]}
}
for {set i 0} {$i < 1000} {incr i} {
    lappend scattered_names stage[expr {$i * 7919 % 15000}]_reg\[[expr {$i % 32}]\]
}

# Microseconds for each name, from a loop in a proc; the loop's own share is in every number.
proc look_up {names times} {
    foreach name $names {
        if {[llength [get_cells $name]] != 1} {error "there is no cell '$name'"}
    }
    proc loop {names times} {
        for {set i 0} {$i < $times} {incr i} {
            foreach name $names {get_cells $name}
        }
    }
    return [expr {[yardstick::cpu_time [list loop $names $times]] / ([llength $names] * $times)}]
}

# The designs have one name, so the small one is read from a text in which it has another.
close [file tempfile other corvane_bench]
set from [open $small]
set to [open $other w]
puts -nonewline $to [string map [list "\"top\": \{" "\"small\": \{"] [read $from]]
close $to
close $from
read_netlist $other
file delete $other
set first_small [yardstick::cpu_time {get_cells {stage7_lut[7]}}]
foreach run {1 2 3 4 5 6 7 8 9} {
    current_design top
    lappend few [look_up $large_names 200]
    lappend many [look_up $scattered_names 6]
    current_design small
    lappend among_small [look_up $small_names 200]
}
current_design top
foreach variable {few many among_small} {
    set $variable [lindex [lsort -real [set $variable]] 4]
}
row "get_cells NAME among 1,000,000" $few "the same among 1,000" $among_small us "<= 1.5"
row "get_cells NAME among 1,000,000, names far apart" $many "the same among 1,000" $among_small us
row "the first get_cells NAME, which makes the index" $first "the same among 1,000" $first_small us

proc pass_on {} {
    set a [get_cells -hierarchical]
    set b $a
    set c $b
    return $c
}
lassign [in_turn 9 {pass_on} {yardstick::names $::cells}] ours theirs
row "get_cells -hierarchical through three variables" $ours \
    "C loop that makes a Tcl list of the names" $theirs us "<= 0.05"

foreach property {fanout ref_name name} {
    set ours [get_property $property $cells]
    set theirs [yardstick::${property}s $cells]
    if {$ours ne $theirs} {error "the values of '$property' differ"}
    unset ours theirs
    lassign [in_turn 7 "get_property $property \$::cells" "yardstick::${property}s \$::cells"] ours theirs
    row "get_property $property of 1,000,000 cells" $ours "C loop that fills a Tcl list" $theirs us "<= 3"
}

proc filter_by_loop {cells} {
    set result {}
    foreach cell $cells {
        if {[get_property fanout $cell] > 2 && [get_property ref_name $cell] eq "LUT4"} {lappend result $cell}
    }
    return $result
}
proc filter_lists {cells} {
    set result {}
    foreach cell $cells fanout [get_property fanout $cells] ref_name [get_property ref_name $cells] {
        if {$fanout > 2 && $ref_name eq "LUT4"} {lappend result $cell}
    }
    return $result
}
set filter {get_cells -hierarchical -filter {fanout > 2 && ref_name == LUT4}}
lassign [in_turn 9 $filter {yardstick::wide_luts $::cells}] ours theirs
lassign [in_turn 1 {filter_by_loop $::cells} {filter_lists $::cells}] loop lists
set wanted [lsort [yardstick::names [yardstick::wide_luts $cells]]]
foreach script [list $filter {filter_by_loop $cells} {filter_lists $cells}] {
    if {[lsort [get_property name [eval $script]]] ne $wanted} {error "'$script' gives other cells"}
}
if {[llength $wanted] < 1000} {error "the filter keeps no more than [llength $wanted] cells"}
row "-filter with two comparisons on 1,000,000 cells" $ours "C loop with the same compare" $theirs us "<= 10"
row "-filter with two comparisons on 1,000,000 cells" $ours "Tcl loop with expr and get_property" $loop us "<= 0.02"
row "-filter with two comparisons on 1,000,000 cells" $ours "Tcl loop with expr on lists of the values" $lists us

# table.tcl BUILD PATTERN: runs the groups of measurements whose name matches PATTERN, and prints their rows as
# one table. A group is a script group_NAME.tcl beside this file. It is run by tclsh with the build
# directory as its argument and prints rows with `row` of measure.tcl.

lassign $argv build pattern
set here [file dirname [file normalize [info script]]]
source [file join $here measure.tcl]

set rows {}
foreach script [lsort [glob -directory $here group_*.tcl]] {
    set name [regsub {^group_} [file rootname [file tail $script]] {}]
    if {![regexp -- $pattern $name]} continue
    puts stderr "Measuring: $name"
    foreach line [split [exec [info nameofexecutable] $script $build 2>@stderr] \n] {
        if {[llength [split $line \t]] == 6} {lappend rows $line}
    }
}

set format "%-46s %12s  %-42s %12s %8s  %s"
puts [format $format measure "" yardstick "" ratio aim]
set missed 0
foreach row $rows {
    lassign [split $row \t] measure ours yardstick theirs unit aim
    set ratio [expr {$theirs > 0 ? double($ours) / $theirs : Inf}]
    set met [expr {$aim eq "" || [expr "$ratio $aim"]}]
    incr missed [expr {!$met}]
    puts [format $format $measure [figure $ours $unit] $yardstick [figure $theirs $unit] \
        [format %.3g $ratio] "[expr {$aim eq "" ? "" : "ratio $aim"}][expr {$met ? "" : "   MISSED"}]"]
}
puts "[llength $rows] measures, $missed aims missed"

# Reports on the current netlist.

namespace eval ::netlist_report {
    # Fails with advice unless there is a design to report on.
    proc require_design {} {
        if {[namespace which -command ::get_cells] eq "" || [catch current_design name] || $name eq ""} {
            error "There is no design to report on. Read one with read_netlist."
        }
    }

    # The values of a property, also of no objects at all.
    proc values {property objects} {
        expr {[llength $objects] ? [get_property $property $objects] : {}}
    }

    # How often each value occurs: {value count}, the most frequent first, equals in order of name.
    proc histogram {values} {
        set counts {}
        foreach value $values {
            dict incr counts $value
        }
        set rows [lmap {value count} $counts {list $value $count}]
        return [lsort -integer -decreasing -index 1 [lsort -index 0 $rows]]
    }

    # Prints rows of a name and a number; with a limit other than 0, only the first.
    proc print {title rows limit} {
        set width [string length $title]
        set shown [expr {$limit ? [lrange $rows 0 $limit-1] : $rows}]
        foreach row $shown {
            set width [expr {max($width, [string length [lindex $row 0]])}]
        }
        puts [format "%-*s  %10s" $width $title Count]
        puts "[string repeat - $width]  [string repeat - 10]"
        foreach row $shown {
            puts [format "%-*s  %10d" $width {*}$row]
        }
        if {[llength $shown] < [llength $rows]} {
            puts "([expr {[llength $rows] - [llength $shown]}] more)"
        }
    }
}

omu::features::define netlist_report::report_cell_usage {Print how often each type of cell is used, and the sum.} {
    {-limit integer 0 {Most types shown; 0 shows all.}}
    {-instances flag 0 {Count instances of modules too, not only cells without an inside.}}
} {
    ::netlist_report::require_design
    set filter [expr {$instances ? "pin_count >= 0" : "is_leaf"}]
    set types [::netlist_report::values ref_name [get_cells -hierarchical -filter $filter]]
    ::netlist_report::print "Cell type" [::netlist_report::histogram $types] $limit
    puts "[llength $types] cells"
}

omu::features::define netlist_report::report_net_fanout {Print the nets that drive the most loads.} {
    {-limit integer 10 {Most nets shown; 0 shows all.}}
    {-minimum integer 2 {Least fanout of a net that is shown.}}
} {
    ::netlist_report::require_design
    set nets [get_nets -hierarchical -filter "fanout >= $minimum"]
    set rows [lmap name [::netlist_report::values name $nets] fanout [::netlist_report::values fanout $nets] {
        list $name $fanout
    }]
    ::netlist_report::print Net [lsort -integer -decreasing -index 1 [lsort -index 0 $rows]] $limit
}

# What the tests of the netlist commands share: the small netlist, and a way to see a refusal.

namespace eval netlists {
    variable blinker [file normalize [file join [file dirname [info script]] .. .. data design blinker.json]]

    # Reads the small netlist afresh.
    proc fresh {} {
        variable blinker
        read_netlist -quiet $blinker
    }

    proc write {name text} {
        set channel [open $name w]
        puts -nonewline $channel $text
        close $channel
        return $name
    }

    # The names of all objects of the current design, class by class.
    proc contents {} {
        lmap objects [list [get_cells -hierarchical] [get_nets -hierarchical] [get_pins -hierarchical] [get_ports]] {
            get_property name $objects
        }
    }

    proc close_all {} {
        foreach d [get_designs -quiet] {design::close_design $d}
    }
}

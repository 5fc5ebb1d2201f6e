# Reads the netlist of the UART beside this script and reports what it is made of.

set here [file dirname [file normalize [info script]]]
read_netlist [file join $here uart.json]

proc heading {text} {puts "\n$text\n[string repeat - [string length $text]]"}

# How often each value occurs in a list, as pairs of value and count, the most frequent first.
proc histogram {values} {
    set counts {}
    foreach value $values {dict incr counts $value}
    return [lsort -stride 2 -index 1 -integer -decreasing [lsort -stride 2 -index 0 $counts]]
}

set leaves [get_cells -hierarchical -filter {is_leaf}]
set flip_flops [get_cells -hierarchical -filter {ref_name =~ DFF*}]

puts "Design [current_design]: [llength $leaves] cells, [llength [get_nets -hierarchical]] nets,\
    [llength [get_ports]] port bits"

heading "Cells by type"
foreach {type count} [histogram [get_property ref_name $leaves]] {
    puts [format "%-8s %5d  %s" $type $count [string repeat # [expr {($count + 4) / 5}]]]
}

heading "Flip-flops by instance"
foreach {instance count} [histogram [get_property parent $flip_flops]] {
    puts [format "%-12s %5d" [expr {$instance eq "" ? "(top)" : $instance}] $count]
}

heading "Nets of the highest fanout"
set nets [get_nets -hierarchical -filter {fanout >= 16}]
set rows [lmap name [get_property name $nets] fanout [get_property fanout $nets] {list $name $fanout}]
foreach row [lrange [lsort -index 1 -integer -decreasing [lsort -index 0 $rows]] 0 9] {
    puts [format "%-28s %5d" {*}$row]
}

heading "Ports"
set ports [get_ports]
set buses [lmap name [get_property name $ports] direction [get_property direction $ports] {
    list $direction [regsub {\[\d+\]$} $name {}]
}]
foreach {bus width} [lsort -stride 2 -index 0 [histogram $buses]] {
    puts [format "%-4s %-12s %3d" {*}$bus $width]
}

# What the groups of measurements share.

# The median of `count` runs of a script that returns a number.
proc median {count script} {
    set values {}
    for {set i 0} {$i < $count} {incr i} {
        lappend values [uplevel 1 $script]
    }
    return [lindex [lsort -real $values] [expr {$count / 2}]]
}

# Microseconds from the start of a program to its end, without its output.
proc time_of {args} {
    set start [clock microseconds]
    exec {*}$args >/dev/null 2>/dev/null </dev/null
    return [expr {[clock microseconds] - $start}]
}

# Prints a row for the table: what was measured and its yardstick, with values in the same unit, us or bytes. The
# aim is a comparison that the ratio of the two should satisfy, as "<= 4"; empty for a figure without one.
set row_channel stdout
proc row {measure ours yardstick theirs unit {aim ""}} {
    puts $::row_channel [join [list $measure $ours $yardstick $theirs $unit $aim] \t]
    flush $::row_channel
}

# A value with the unit that reads best.
proc figure {value unit} {
    set scales [dict get {
        us {1e6 s 1e3 ms 1 us 1e-3 ns}
        bytes {1073741824 GiB 1048576 MiB 1024 KiB 1 B}
    } $unit]
    foreach {size name} $scales {
        if {$value >= $size} break
    }
    return [format "%.3g %s" [expr {double($value) / $size}] $name]
}

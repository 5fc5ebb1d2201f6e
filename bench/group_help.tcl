# What help costs at the prompt. tclsh has Corvane run the whole group; the yardsticks are what a script would write in
# Tcl for the same text.

set here [file dirname [file normalize [info script]]]
source [file join $here measure.tcl]

if {[catch {package present omu::commontasks}]} {
    puts [exec [file join [lindex $argv 0] root bin corvane] -mode tcl -quiet -nolog -nojournal -notrace \
        << "source [list [file normalize [info script]]]"]
    exit
}

# Microseconds of one evaluation of a script.
proc cost {script} {
    return [median 9 {lindex [time $script 20] 0}]
}

# A summary, written in Tcl from the names and descriptions in a dictionary.
proc summary {descriptions} {
    set width 0
    foreach name [dict keys $descriptions] {
        set width [expr {max($width, [string length $name])}]
    }
    set text [format "%-${width}s  %s\n%s  %s\n" Topic Description [string repeat - $width] [string repeat - 40]]
    foreach name [lsort [dict keys $descriptions]] {
        append text [format "%-${width}s  %s\n" $name [dict get $descriptions $name]]
    }
    return $text
}

# The names and descriptions that a summary shows.
proc rows {summary} {
    set rows {}
    foreach line [lrange [split $summary \n] 3 end] {
        if {$line eq ""} break
        if {[regexp {^(\S+)\s+(\S.*)$} $line -> name description]} {
            dict set rows $name $description
        }
    }
    return $rows
}

proc contents {file} {
    set channel [open $file]
    try {
        return [read $channel]
    } finally {
        close $channel
    }
}

set start [clock microseconds]
help -list
set first [expr {[clock microseconds] - $start}]
row "help, the categories, first time" $first "lsort of info commands" [cost {lsort [info commands]}] us
row "help, the categories, again" [cost {help}] "lsort of info commands" [cost {lsort [info commands]}] us
row "help -list *, [llength [help -list *]] names" [cost {help -list *}] \
    "lsort of info commands, [llength [info commands]] names" [cost {lsort [info commands]}] us

set all [rows [help *]]
row "help *, a summary of [dict size $all] topics" [cost {help *}] "the same text by format" [cost {summary $::all}] us
foreach category {Object TclBuiltIn} {
    set topics [rows [help -category $category]]
    row "help -category $category, [dict size $topics] topics" [cost {help -category $::category}] \
        "the same text by format" [cost {summary $::topics}] us
}
# The manual page of a name, looked for and read by a script.
proc read_page {roots name} {
    foreach root $roots {
        foreach file [glob -nocomplain -directory [file join $root doc eng tcl] $name] {
            return [contents $file]
        }
    }
}
set roots [list [omu::get_app_root] [file join [omu::get_app_root] share tcl8.6]]
row "help lassign, a manual page" [cost {help lassign}] \
    "glob for the page, and read it" [cost {read_page $::roots lassign}] us
row "help get_property, a command's help" [cost {help get_property}] \
    "glob for a page, and read it" [cost {read_page $::roots lassign}] us
row "help get_proprty, an unknown name" [cost {catch {help get_proprty}}] \
    "all manual pages read" [cost {foreach f [glob -directory [lindex $::roots 1]/doc/eng/tcl *] {contents $f}}] us

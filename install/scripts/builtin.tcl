# Gives the global names of the replaced commands to the omu:: commands and keeps Tcl's own under tcl::, and
# makes the public commands of common:: callable by their plain names.

namespace eval ::tcl {}
namespace eval ::common {namespace export *}
namespace eval ::omu {}

# Evaluates a script of imports without Tcl's search for what could be loaded for them: all that is imported
# here exists, and the search needs commands that are being replaced.
proc ::omu::import {script} {
    set search [namespace which ::auto_import]
    if {$search ne ""} {rename ::auto_import ::tcl::auto_import}
    try {
        namespace eval :: $script
    } finally {
        if {$search ne ""} {rename ::tcl::auto_import ::auto_import}
    }
}

# Imports the commands that common:: has by now into the global namespace, unless the interpreter was made
# without them there. A name that is taken there stays what it is. To be called again by what adds commands later.
proc ::omu::publish {} {
    if {[info exists ::omu::noimport]} return
    set imports {}
    foreach command [info commands ::common::*] {
        if {[namespace which ::[namespace tail $command]] eq ""} {
            append imports [list namespace import $command] \n
        }
    }
    import $imports
}

# Replaces those of Tcl's commands that omu:: has a command for.
proc ::omu::replace {names} {
    set imports {}
    foreach name $names {
        if {[namespace which ::omu::$name] eq "" || [namespace which ::tcl::$name] ne ""} continue
        namespace eval ::omu [list namespace export $name]
        append imports [list rename ::$name ::tcl::$name] \n [list namespace import ::omu::$name] \n
    }
    import $imports
}

omu::replace {
    catch foreach join lappend lindex llength load lrange lreplace lreverse lsearch lset lsort source subst
}
omu::publish

# The list commands that derive and change a value, where that is a collection. The task of the same work does
# it. A task that has done nothing, code 9998 or 9999, leaves the call to Tcl's own command, on the list of the
# elements.

# Ends the calling procedure with the outcome of a task, unless that has done nothing.
proc ::omu::end_with_task {args} {
    if {[::tcl::catch {{*}$args} result options] ni {9998 9999}} {
        dict incr options -level 2
        return -options $options $result
    }
}

proc ::omu::lrange_of_collection {value args} {
    if {[llength $args] == 2} {end_with_task col_lrange -- $value {*}$args}
    tailcall lrange [col2list -list $value] {*}$args
}

proc ::omu::lreverse_of_collection {value args} {
    if {[llength $args] == 0} {end_with_task col_lreverse -list $value}
    tailcall lreverse [col2list -list $value] {*}$args
}

proc ::omu::lreplace_of_collection {value args} {
    if {[llength $args] >= 2} {end_with_task col_lreplace -- $value {*}$args}
    tailcall lreplace [col2list -list $value] {*}$args
}

proc ::omu::lsort_of_collection {args} {
    set value [lindex $args end]
    set options [lrange $args 0 end-1]
    if {$options eq "-unique"} {end_with_task col_lsort -unique $value}
    tailcall lsort {*}$options [col2list -list $value]
}

# A collection that others hold too, beside the three variables here, is changed in a copy. A list that Tcl's
# command refuses to change leaves the variable its collection.
proc ::omu::lset_in_collection {name args} {
    upvar 1 $name variable
    set value $variable
    if {[llength $args] == 2} {
        set target $value
        if {[col_isshared value] > 3} {set target [col_copy -list $value]}
        if {[::tcl::catch {col_lset -- $target {*}$args} result options] ni {9998 9999}} {
            if {[dict get $options -code] == 0} {return [uplevel 1 [list ::set $name $target]]}
            return -options $options $result
        }
    }
    if {[::tcl::catch {
        uplevel 1 [list ::set $name [col2list -list $value]]
        uplevel 1 [list ::omu::lset $name {*}$args]
    } result options]} {
        ::tcl::catch {uplevel 1 [list ::set $name $value]}
    }
    return -options $options $result
}

# Tcl's history, with its events where the whole tool sees them. What is asked and refused, and in which words,
# is as in Tcl; its own procedures, which speak to an array, are only loaded for the command itself.
namespace eval ::omu::history {
    proc add {command {exec {}}} {
        if {[llength [::info level 0]] == 3 && [::tcl::prefix longest {exec {}} $exec] eq ""} {
            return -code error "bad argument \"$exec\": should be \"exec\""
        }
        if {[string trim $command] eq ""} {return ""}
        tailcall ::omu::HistAdd -command $command -exec [expr {$exec eq "" ? "" : "exec"}]
    }

    proc change {newValue {event 0}} {
        ::omu::HistChange -newvalue $newValue -event [newest_to $event]
        return $newValue
    }

    proc clear {} {tailcall ::omu::HistClear}

    proc event {{event -1}} {tailcall ::omu::HistEvent -event [newest_to $event]}

    proc info {{count {}}} {
        if {[llength [::info level 0]] == 1} {tailcall ::omu::HistInfo}
        if {![string is integer -strict $count]} {
            return -code error "bad integer \"$count\""
        }
        tailcall ::omu::HistInfo -count [expr {max($count, 0)}]
    }

    proc keep {{count {}}} {
        if {[llength [::info level 0]] == 1} {tailcall ::omu::HistKeep}
        if {![string is integer -strict $count] || $count < 0} {
            return -code error "illegal keep count \"$count\""
        }
        tailcall ::omu::HistKeep -count $count
    }

    proc nextid {} {tailcall ::omu::HistNextId}

    proc redo {{event -1}} {
        set offset [newest_to $event]
        if {$offset == 0} {
            return -code error "cannot redo the current event"
        }
        tailcall ::omu::HistRedo -event $offset
    }

    # The way from the newest event to the one that a number or the beginning or pattern of a command names.
    proc newest_to {event} {
        set newest [expr {[::omu::HistNextId] - 1}]
        set forgotten [expr {$newest - [::omu::HistKeep]}]
        if {[string is integer -strict $event]} {
            set number [expr {$event <= 0 ? $newest + $event : $event}]
        } else {
            for {set number [expr {$newest - 1}]} {$number > max($forgotten, 0)} {incr number -1} {
                set command [::omu::HistEvent -event $number]
                if {$command ne "" && ([string match $event* $command] || [string match $event $command])} {
                    return [expr {$number - $newest}]
                }
            }
            return -code error "no event matches \"$event\""
        }
        if {$number <= $forgotten} {
            return -code error "event \"$event\" is too far in the past"
        }
        if {$number > $newest} {
            return -code error "event \"$event\" hasn't occured yet"
        }
        return [expr {$number - $newest}]
    }
}

# Stands in for Tcl's command until the first use, which most sessions without a prompt never come to.
proc ::history {args} {
    set source [expr {[namespace which ::tcl::source] eq "" ? "::source" : "::tcl::source"}]
    uplevel #0 [list $source [file join $::tcl_library history.tcl]]
    set routes {}
    foreach name {add change clear event info keep nextid redo} {
        lappend routes $name ::omu::history::$name
    }
    namespace ensemble configure ::tcl::history -map $routes
    tailcall ::history {*}$args
}

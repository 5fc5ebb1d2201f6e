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

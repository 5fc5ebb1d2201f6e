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

# Imports the commands that common:: has by now into the global namespace. A name that is taken there stays
# what it is. To be called again by what adds commands later.
proc ::omu::publish {} {
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

omu::replace {catch foreach join lappend lindex llength lsearch source}
omu::publish

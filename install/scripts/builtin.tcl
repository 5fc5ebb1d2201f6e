# Gives the global names of the replaced commands to the omu:: commands and keeps Tcl's own under tcl::.

namespace eval ::tcl {}
namespace eval ::common {}
namespace eval ::omu {}

apply {names {
    foreach name $names {
        if {[namespace which ::omu::$name] eq "" || [namespace which ::tcl::$name] ne ""} continue
        rename ::$name ::tcl::$name
        namespace eval ::omu [list namespace export $name]
        namespace eval :: [list namespace import ::omu::$name]
    }
}} {catch foreach join lappend lindex llength lsearch}

# What the tests of interpreters share.

source [file join [file dirname [file normalize [info script]]] .. console.tcl]
namespace import console::shown

namespace eval support {
    # Code and result of a script.
    proc outcome {script} {
        return [list [tcl::catch {uplevel 1 $script} result] $result]
    }

    proc write_file {name text} {
        set file [open $name wb]
        puts -nonewline $file [encoding convertto utf-8 $text]
        close $file
        return $name
    }
    proc read_file {name} {
        set file [open $name rb]
        set bytes [read $file]
        close $file
        return $bytes
    }

    # Pages of memory in use.
    proc resident {} {
        return [lindex [read_file /proc/self/statm] 1]
    }
    # "flat" if less than a number of pages were added since, else how many. A sanitizer keeps what was freed for
    # a while, and finds leaks by itself.
    proc growth {before limit} {
        set added [expr {[resident] - $before}]
        return [expr {$added < $limit || [regexp {lib[at]san} [read_file /proc/self/maps]] ? "flat" : $added}]
    }
    namespace export *
}
namespace import support::*

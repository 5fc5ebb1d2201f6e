# What the tests of help share: commands that show each one thing, and application roots made up for a test.
load $env(CORVANE_HELP_SAMPLES) Help_samples
source [file join [file dirname [file normalize [info script]]] .. console.tcl]
namespace import console::shown

# The messages that a script sends, in place of its result.
proc messages {script} {
    lsearch -all -inline -regexp [split [uplevel 1 [list shown $script]] \n] {^(STATUS|WARNING|CRITICAL WARNING|ERROR): }
}

# The text of the error that a script ends in, its first line alone.
proc refusal {script} {
    if {![catch {uplevel 1 $script} reason]} {
        error "no error: $reason"
    }
    return [lindex [split $reason \n] 0]
}

# Runs a script with a further application root that has these files, path and text in turn.
proc with_root {files script} {
    set root [file join [pwd] root]
    foreach {name text} $files {
        file mkdir [file dirname [file join $root $name]]
        set channel [open [file join $root $name] wb]
        puts -nonewline $channel $text
        close $channel
    }
    set ::env(OMU_APPROOT) $root
    try {
        uplevel 1 $script
    } finally {
        unset ::env(OMU_APPROOT)
        file delete -force $root
    }
}

# The topics that a summary shows, in its order.
proc topics {summary} {
    set topics {}
    foreach line [lrange [split $summary \n] 3 end] {
        if {$line eq ""} break
        if {[regexp {^\S+} $line topic]} {
            lappend topics $topic
        }
    }
    return $topics
}

# What the tests of message rules share.

source [file join [file dirname [info script]] support.tcl]
set_param messaging.defaultLimit 1000000

namespace eval messages {
    # Takes all rules out of force.
    proc no_rules {} {
        foreach line [lines [debug::get_msg_control_rules -as_tcl]] {
            reset_msg_config -ruleid [dict get [lrange [split_options $line] 1 end] -ruleid]
        }
    }

    proc lines {text} {
        return [lrange [split $text \n] 0 end-1]
    }

    # The command with a value behind each option, also behind a flag.
    proc split_options {line} {
        set words [list]
        foreach word $line {
            lappend words $word
            if {$word in {-suppress -regexp}} {
                lappend words 1
            }
        }
        return $words
    }

    # The commands that make the rules in force.
    proc rules {} {
        return [lines [debug::get_msg_control_rules -as_tcl]]
    }

    # What a script shows, and how it ends: 0 or 1, followed by the result.
    proc outcome {script} {
        set shown [shown_by {set code [catch {uplevel 1 $script} result]}]
        return [list $code $result $shown]
    }

    # The ids of the messages that a script shows, and 0 or 1 for how it ends.
    proc ids {script} {
        lassign [uplevel 1 [list [namespace which outcome] $script]] code result shown
        return [list $code {*}[lmap {all id} [regexp -all -inline {\[([^]]*)\] } $shown] {set id}]]
    }
}

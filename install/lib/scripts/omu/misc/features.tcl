# Prepares an interpreter for features: what their scripts use to declare commands. Sourced once, before the
# first feature command looks for features.

namespace eval ::omu::features {
    # The declarations of define: command to {summary arguments}.
    variable declared {}
}

# define COMMAND SUMMARY ARGUMENTS BODY
# Makes the command of a feature, which is then known by its plain name too. Each of ARGUMENTS is
# {-name KIND DEFAULT HELP} for a switch or {name KIND HELP} for a word that has to be there; KIND is flag,
# integer (of zero or more) or text. BODY finds each value in the variable NAME. The command answers -help,
# takes switches by their first letters, and refuses what it was not declared for.
proc ::omu::features::define {command summary arguments body} {
    variable declared
    set command [string trimleft $command :]
    dict set declared $command [list $summary $arguments]
    namespace eval ::[namespace qualifiers $command] [list namespace export [namespace tail $command]]
    proc ::$command args [string map [list @command@ [list $command] @body@ $body] {
        if {[catch {::omu::features::parse @command@ $args} args]} {
            return -code error -errorcode {CORVANE FEATURE USAGE} $args
        }
        if {[dict size $args] == 0} return
        dict with args {}
        @body@
    }]
    namespace eval :: [list namespace import ::$command]
}

# The values of a call by name; nothing when the call asked for help and was answered.
proc ::omu::features::parse {command words} {
    variable declared
    set name [namespace tail $command]
    set switches {-help flag}
    set values {}
    set places {}
    foreach argument [lindex [dict get $declared $command] 1] {
        set word [lindex $argument 0]
        if {[string index $word 0] eq "-"} {
            dict set switches $word [lindex $argument 1]
            dict set values [string range $word 1 end] [lindex $argument 2]
        } else {
            lappend places $argument
        }
    }
    while {[llength $words]} {
        set word [lindex $words 0]
        set words [lrange $words 1 end]
        if {$word eq "--" || ![string match -?* $word]} {
            if {$word ne "--"} {
                set words [linsert $words 0 $word]
            }
            break
        }
        if {[catch {tcl::prefix match -message option [dict keys $switches] $word} switch]} {
            error "$switch. Usage: [usage $command]"
        }
        if {$switch eq "-help"} {
            puts [help $command]
            return
        }
        set kind [dict get $switches $switch]
        if {$kind eq "flag"} {
            set value 1
        } elseif {[llength $words] == 0} {
            error "Option '$switch' of '$name' needs a value: [kind $kind]."
        } else {
            set value [lindex $words 0]
            set words [lrange $words 1 end]
            check $kind $value "option '$switch' of '$name'"
        }
        dict set values [string range $switch 1 end] $value
    }
    foreach place $places {
        lassign $place variable kind
        if {[llength $words] == 0} {
            error "Argument '$variable' of '$name' is missing. Usage: [usage $command]"
        }
        check $kind [lindex $words 0] "argument '$variable' of '$name'"
        dict set values $variable [lindex $words 0]
        set words [lrange $words 1 end]
    }
    if {[llength $words]} {
        error "'[lindex $words 0]' has no place among the arguments of '$name'. Usage: [usage $command]"
    }
    # A command without arguments has a value too: only a request for help has none.
    dict set values args {}
    return $values
}

proc ::omu::features::check {kind value where} {
    if {$kind eq "integer" && !([string is entier -strict $value] && $value >= 0)} {
        error "'$value' is not a valid value for $where: expected [kind $kind]."
    }
}

proc ::omu::features::kind {kind} {
    dict get {integer "an integer of zero or more" text "any text"} $kind
}

proc ::omu::features::usage {command} {
    variable declared
    set switches {}
    set places {}
    foreach argument [lindex [dict get $declared $command] 1] {
        lassign $argument word kind
        if {[string index $word 0] ne "-"} {
            lappend places "<$word>"
        } elseif {$kind eq "flag"} {
            lappend switches "\[$word\]"
        } else {
            lappend switches "\[$word <arg>\]"
        }
    }
    return [join [list [namespace tail $command] {*}$switches {*}$places]]
}

proc ::omu::features::help {command} {
    variable declared
    lassign [dict get $declared $command] summary arguments
    set lines [list [namespace tail $command] "" "Description:" "  $summary" "" "Syntax:" "  [usage $command]"]
    if {[llength $arguments]} {
        lappend lines "" "Arguments:"
    }
    foreach argument $arguments {
        set word [lindex $argument 0]
        set text [lindex $argument end]
        if {[string index $word 0] ne "-"} {
            set word <$word>
        } elseif {[lindex $argument 1] ne "flag" && [lindex $argument 2] ne ""} {
            append text " Default: [lindex $argument 2]"
        }
        lappend lines [format "  %-16s  %s" $word $text]
    }
    return [join $lines \n]
}

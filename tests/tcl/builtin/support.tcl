# What the tests of the list commands share: collections of sample objects, and calls of Tcl's own commands beside the
# replacements.

source [file join [file dirname [file normalize [info script]]] .. console.tcl]
load $::env(CORVANE_COLLECTION_SAMPLES) Collection_samples

namespace eval support {
    # The code, result and return options of a call in the caller's frame. Namespaces are taken out, so that only
    # real differences remain.
    proc outcome {args} {
        set code [tcl::catch {uplevel 1 $args} result options]
        return [string map {tcl:: {} omu:: {}} [list $code $result [lsort -stride 2 -index 0 $options]]]
    }

    # A number from 0 up to, not including, `count`; an element of a list; a list of up to `most` of its elements.
    proc random {count} {return [expr {int(rand() * $count)}]}
    proc one_of {values} {return [tcl::lindex $values [random [tcl::llength $values]]]}
    proc some_of {values most} {
        set result {}
        for {set count [random [expr {$most + 1}]]} {$count > 0} {incr count -1} {
            tcl::lappend result [one_of $values]
        }
        return $result
    }

    # Elements with all that makes quoting and parsing hard, and texts that are no lists.
    variable words [list {} a b c "a b" {x {y z}} "\{" "\"" \\ "\$v" {[x]} "#" ";" " lead" "two\nlines" \
        \u00e9\u4e2d "nul\0byte" 0 1 2 10 -3 1.5 0x10 end A*]
    variable broken [list "a \{b" "\{a\}b" "\"a\"b" "a \"b" "\}"]
    proc some_list {} {
        variable words
        variable broken
        switch [random 8] {
            0 {return [one_of $broken]}
            1 {return [tcl::join [some_of $words 3]]}
            default {return [some_of $words 6]}
        }
    }

    # A copy of a word without what Tcl knows of it; every second one is known as a list, if it is one.
    proc fresh {word asList} {
        set copy [string range "+$word" 1 end]
        if {$asList} {
            tcl::catch {tcl::llength $copy}
        }
        return $copy
    }

    # The calls, of `count` made by a script with a fixed seed, on which the replacement and Tcl's own command
    # differ. `prepare` is run before each of both calls. Names of one length keep the cut of long error stacks the
    # same.
    proc differences {command count make {prepare {}}} {
        expr {srand(20260101)}
        set different {}
        for {set i 0} {$i < $count} {incr i} {
            set words [uplevel 1 $make]
            set outcomes {}
            tcl::foreach name [list omu::$command tcl::$command] {
                uplevel 1 $prepare
                set copies [lmap word $words {fresh $word [expr {$i % 2}]}]
                tcl::lappend outcomes [uplevel 1 [list support::outcome $name {*}$copies]]
            }
            if {[tcl::lindex $outcomes 0] ne [tcl::lindex $outcomes 1]} {
                tcl::lappend different [list $command {*}$words] {*}$outcomes
            }
        }
        return $different
    }
}

# A collection of objects of these names, and whether a value is one.
interp alias {} objects {} samples::objects
interp alias {} is_collection {} samples::is_collection

# Whether the text of a value has not been made.
proc has_no_text {value} {
    return [string match "*no string representation" [tcl::unsupported::representation $value]]
}

# Runs scripts in sessions of their own whose parameters are made up, for what the tool's own cannot show.

namespace eval session {
    variable parameters {
        parameter a.bool bool true "A switch."
        parameter a.count int 5 range 1 10 "A count."
        parameter a.free int -3 "A free number."
        parameter a.quarter float 0.25 range 0 1 "A share."
        parameter a.tenth float 0.1 range 0.1 0.9 "Another share."
        parameter a.text string "x y" values "x y" "z" end "A text."
        parameter b.hidden bool false hidden "A hidden switch."
        parameter b.old int 0 deprecated "An old number."
        parameter b.gone int 0 obsolete "A number without effect."
        parameter y.broken linked false links a.bool c.missing z.last "Drives one that is missing."
        parameter z.driver linked false links A.BOOL !b.hidden "Drives others."
        parameter z.last bool false "Comes last."
    }

    # The value of a script's last command, evaluated in a fresh session. `output` gets what the session showed.
    proc run {script {output ""}} {
        variable parameters
        if {$output ne ""} {upvar 1 $output shown}
        set root [file join [pwd] session]
        file mkdir [file join $root data param]
        tcltest::makeFile $parameters [file join $root data param test.param]
        set result [file join $root result]
        set wrapped "set channel \[open [list $result] w\]
            puts -nonewline \$channel \[namespace eval :: [list $script]\]
            close \$channel"
        set file [tcltest::makeFile $wrapped [file join $root script.tcl]]
        set ::env(OMU_APPROOT) $root
        try {
            set shown [exec -ignorestderr [info nameofexecutable] -mode batch -nolog -nojournal -notrace \
                -source $file </dev/null]
            return [contents $result]
        } finally {
            unset ::env(OMU_APPROOT)
            file delete -force $root
        }
    }

    proc contents {file} {
        set channel [open $file]
        try {
            return [read $channel]
        } finally {
            close $channel
        }
    }

    # The lines of a session's output that are messages about parameters.
    proc messages {output} {
        return [lsearch -all -inline -regexp [split $output \n] {^\w+( \w+)?: \[Common 17-(15|35|16|52)}]
    }
}

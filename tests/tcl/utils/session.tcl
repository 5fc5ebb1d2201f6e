# Runs scripts in sessions of their own, with an application root that the test fills and an environment that
# it sets.

namespace eval session {
    variable root [file join [pwd] root]

    # Writes a file of the extra application root.
    proc file_of_root {name content} {
        variable root
        set path [file join $root $name]
        file mkdir [file dirname $path]
        set out [open $path w]
        puts $out $content
        close $out
        return $path
    }

    # The script of a feature.
    proc feature {name script} {
        file_of_root lib/scripts/omu/features/$name/$name.tcl $script
    }

    proc clear {} {
        variable root
        file delete -force $root
    }

    # The value of a script's last command in a fresh session whose first application root is the extra one.
    # `output` gets what the session showed; `environment` is a list of variables and values, `options` more
    # words of the command line.
    proc run {script {output ""} {environment {}} {options {-nolog -nojournal}}} {
        variable root
        if {$output ne ""} {upvar 1 $output shown}
        set result [file join [pwd] result]
        set wrapped "set channel \[open [list $result] w\]
            puts -nonewline \$channel \[namespace eval :: [list $script]\]
            close \$channel"
        set file [tcltest::makeFile $wrapped script.tcl]
        set words [list env OMU_APPROOT=$root]
        foreach {name value} $environment {
            lappend words $name=$value
        }
        set shown [exec -ignorestderr {*}$words [info nameofexecutable] -mode batch {*}$options -notrace \
            -source $file </dev/null]
        set value [tcltest::viewFile $result]
        file delete $result
        return $value
    }

    # The message lines of an output.
    proc messages {output} {
        lsearch -all -inline -regexp [split $output \n] {^(ERROR|CRITICAL WARNING|WARNING|INFO): }
    }
}

# A look at the console, for the tests of all areas.

namespace eval console {
    variable text ""

    # A transform of standard output that keeps what is written.
    proc keep {operation args} {
        variable text
        switch $operation {
            initialize {return {initialize finalize write}}
            write {
                append text [encoding convertfrom utf-8 [tcl::lindex $args 1]]
                return ""
            }
        }
    }

    # What a script, run in the caller's frame, writes to standard output, which then does not get there.
    proc shown {script} {
        variable text ""
        ::flush stdout
        chan push stdout [namespace which keep]
        try {
            uplevel 1 $script
        } finally {
            ::flush stdout
            chan pop stdout
        }
        return $text
    }
    namespace export shown
}

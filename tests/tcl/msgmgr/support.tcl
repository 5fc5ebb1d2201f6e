# What the tests of message commands share.

namespace eval messages {
    variable shown ""

    # A transform of stdout that keeps what is written, as bytes.
    proc keep {operation args} {
        variable shown
        switch $operation {
            initialize {return {initialize finalize write}}
            write {
                append shown [lindex $args 1]
                return ""
            }
        }
    }

    # Runs a script in the caller's level and gives what it shows on the console.
    proc shown_by {script} {
        variable shown ""
        flush stdout
        chan push stdout [namespace which keep]
        try {
            uplevel 1 $script
        } finally {
            flush stdout
            chan pop stdout
        }
        return $shown
    }

    # Sources a script in a session of its own, with environment variables NAME VALUE ...; gives its exit status
    # and what it printed behind the command that started it.
    proc session {script args} {
        set path [makeFile $script session.tcl]
        set status 0
        try {
            set output [exec env {*}[lmap {name value} $args {string cat $name = $value}] [info nameofexecutable] \
                -mode batch -nolog -nojournal -notrace -source $path </dev/null 2>@1]
        } trap CHILDSTATUS {output options} {
            set status [lindex [dict get $options -errorcode] 2]
            set output [regsub {\n?child process exited abnormally$} $output ""]
        }
        return [list $status [regsub {^.*?source [^\n]*session.tcl -notrace\n} $output ""]]
    }
}

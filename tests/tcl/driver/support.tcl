# What the tests of the session share: whole sessions of the program as child processes.

# session ?-env LIST? ?-input TEXT? WORD ...: runs the program with these words and returns its exit status and
# all that it wrote, as a dictionary with "status" and "out".
proc session {args} {
    set environment {}
    set input ""
    while {[lindex $args 0] in {-env -input}} {
        set args [lassign $args option value]
        if {$option eq "-env"} {set environment $value} else {set input $value}
    }
    set status 0
    set code [catch {
        exec -ignorestderr env {*}$environment [info nameofexecutable] {*}$args << $input 2>@1
    } out options]
    if {$code} {
        set reason [dict get $options -errorcode]
        if {[lindex $reason 0] ne "CHILDSTATUS"} {error "the session did not end by itself: $out"}
        set status [lindex $reason 2]
        regsub {\n?child process exited abnormally$} $out "" out
    }
    dict create status $status out $out
}

# A batch session without files or header that sources these scripts.
proc batch {args} {
    set words {}
    foreach script $args {lappend words -source $script}
    session -mode batch -nolog -nojournal -quiet {*}$words
}

proc script {name text} {tcltest::makeFile $text $name [pwd]}
proc read_file {name} {set f [open $name]; try {read $f} finally {close $f}}

# The lines of a text that a pattern matches.
proc lines {text pattern} {lsearch -all -inline -regexp [split $text \n] $pattern}

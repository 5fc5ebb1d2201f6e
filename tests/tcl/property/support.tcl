# What the tests of the property commands share: the classes gate, port, wire and chip, with objects of them.
load $env(CORVANE_PROPERTY_SAMPLES) Property_samples

# The text of the error that a script ends in.
proc failure {script} {
    if {![catch {uplevel 1 $script} reason]} {
        error "no error: $reason"
    }
    return $reason
}

# What a script writes to the console and leaves as its result.
proc shown {script} {
    set ::shown ""
    chan push stdout ::capture
    try {
        uplevel 1 $script
    } finally {
        chan pop stdout
    }
    return $::shown
}
namespace eval capture {
    proc initialize {handle mode} {return {initialize finalize write}}
    proc finalize {handle} {}
    proc write {handle bytes} {append ::shown [encoding convertfrom utf-8 $bytes]; return ""}
    namespace export *
    namespace ensemble create
}

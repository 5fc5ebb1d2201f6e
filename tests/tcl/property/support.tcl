# What the tests of the property commands share: the classes gate, port, wire and chip, with objects of them.
load $env(CORVANE_PROPERTY_SAMPLES) Property_samples
source [file join [file dirname [file normalize [info script]]] .. console.tcl]
namespace import console::shown

# The text of the error that a script ends in.
proc failure {script} {
    if {![catch {uplevel 1 $script} reason]} {
        error "no error: $reason"
    }
    return $reason
}

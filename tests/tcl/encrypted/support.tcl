# What the tests of encrypted scripts share: a key, and scripts written with it.

source [file join [file dirname [file normalize [info script]]] .. interp support.tcl]

debug::create_script_key test.key
set_param source.keyFile test.key

# Encrypts a text into a file of the name, and gives the name.
proc encrypted {name text} {
    write_file plain.tmp $text
    debug::encrypt_script -force plain.tmp $name
    file delete plain.tmp
    return $name
}

proc write_bytes {name bytes} {
    set file [open $name wb]
    puts -nonewline $file $bytes
    close $file
    return $name
}

# What comes of sourcing a file whose script sets the variable evaluated: the code, the result and whether the
# variable was set.
proc try_source {name} {
    unset -nocomplain ::evaluated
    set outcome [outcome [list uplevel #0 [list source -notrace $name]]]
    return [list {*}$outcome [info exists ::evaluated]]
}

# The ids of the messages in a text.
proc ids {text} {
    return [lmap {all id} [regexp -all -inline {\[Common (17-\d+)\]} $text] {set id}]
}

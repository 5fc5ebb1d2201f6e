# Commands that look at the session itself: what a script costs, where the session stands, what was done in it.

namespace eval ::session_tools {}

# The memory of this process in KiB.
proc ::session_tools::memory {} {
    set file [open /proc/self/status]
    try {
        regexp {VmRSS:\s+(\d+)} [read $file] -> kib
    } finally {
        close $file
    }
    return $kib
}

omu::features::define session_tools::measure_script {Run a script in the caller's scope and tell what it cost.} {
    {-count integer 1 {How often the script is run.}}
    {script text {Script to run.}}
} {
    set before [::session_tools::memory]
    set start [clock microseconds]
    for {set run 0} {$run < $count} {incr run} {
        uplevel 1 $script
    }
    set elapsed [expr {[clock microseconds] - $start}]
    return [dict create runs $count microseconds [expr {$count ? $elapsed / $count : 0}] \
        memory_growth_kib [expr {[::session_tools::memory] - $before}]]
}

omu::features::define session_tools::report_session {Print where this session stands: product, files, features.} {} {
    set rows [list \
        Product [omu::get_product_name] \
        Mode [expr {[info exists ::omu::mode] ? $::omu::mode : ""}] \
        Directory [pwd] \
        Log [omu::get_log_filename] \
        Journal [omu::get_journal_filename] \
        Installation [omu::get_app_root] \
        {User data} [omu::get_app_data] \
        {Features loaded} [omu::current_features] \
        {Features available} [common::list_features]]
    foreach {what value} $rows {
        puts [format "%-20s%s" $what [expr {$value eq "" ? "-" : $value}]]
    }
}

omu::features::define session_tools::write_session_script {
    Write the commands of this session, as the journal has them, to a script.
} {
    {-force flag 0 {Replace the file if it exists.}}
    {file text {Script to write.}}
} {
    set journal [omu::get_journal_filename]
    if {$journal eq ""} {
        error "This session has no journal, so its commands are not known. Start it without -nojournal."
    }
    if {!$force && [file exists $file]} {
        error "The file '$file' exists. Use -force to replace it."
    }
    set in [open $journal]
    try {
        set lines [split [read $in] \n]
    } finally {
        close $in
    }
    # A comment is dropped where a command could begin; within a command the line belongs to it.
    set script {}
    set command {}
    foreach line $lines {
        if {$command eq "" && [regexp {^\s*(#|$)} $line]} {
            continue
        }
        append command $line \n
        if {[info complete $command]} {
            append script $command
            set command {}
        }
    }
    set temporary $file.[pid].tmp
    set out [open $temporary w]
    try {
        puts -nonewline $out $script
        close $out
        file rename -force -- $temporary $file
    } on error {reason options} {
        catch {close $out}
        file delete -- $temporary
        return -options $options $reason
    }
    return $file
}

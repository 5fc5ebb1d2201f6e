# Runs one file of tcltest tests, the only word of argv, in the current interpreter. Leaves an error behind
# when a test failed, when the file stopped on an error, or when it ran no test at all.

namespace eval run_test {
    variable counts {Total 0 Passed 0 Skipped 0 Failed 0}
    variable file [lindex $::argv 0]

    # tcltest reads the words of argv as its own options.
    set ::argv {}
    set ::argc 0
    package require tcltest 2.5
    tcltest::configure -verbose {body error line} -singleproc 1 -tmpdir [pwd]

    # A file may call cleanupTests itself, which sets the counts back to zero: they are collected before.
    proc ::tcltest::cleanupTestsHook {} {
        upvar #0 ::run_test::counts counts
        foreach {what count} [array get ::tcltest::numTests] {
            dict incr counts $what $count
        }
    }

    proc run {file} {
        variable counts
        set stopped [catch {uplevel #0 [list source $file]} reason options]
        if {$stopped} {
            puts stderr "The file stopped: [dict get $options -errorinfo]"
        }
        if {$::tcltest::numTests(Total)} {
            tcltest::cleanupTests
        }
        dict with counts {
            puts "[file tail $file]: $Passed passed, $Failed failed, $Skipped skipped"
            if {$stopped} {
                error "$file stopped before its end"
            } elseif {$Failed} {
                error "$Failed of $Total tests failed in $file"
            } elseif {$Passed == 0} {
                error "$file ran no test"
            }
        }
        flush stdout
    }
}

namespace import -force ::tcltest::*
run_test::run $run_test::file

# How long it takes until a program is up and gone again.

source [file join [file dirname [info script]] measure.tcl]
set corvane [file join [lindex $argv 0] root bin corvane]

close [file tempfile empty .tcl]
set runs 41
set tclsh [median $runs {time_of tclsh8.6 $empty}]
row "empty batch script, start to exit" \
    [median $runs {time_of $corvane -mode batch -nolog -nojournal -source $empty}] \
    "tclsh8.6, the same script" $tclsh us "<= 4"
row "corvane -version" [median $runs {time_of $corvane -version}] \
    "tclsh8.6, an empty script" $tclsh us "<= 4"
file delete $empty

# A session that is replayed from its journal comes to the same state: variables, procedures, parameters,
# properties of a netlist, and what can be undone.
source "$(dirname -- "${BASH_SOURCE[0]}")/lib.sh"

blinker=$sources/tests/data/design/blinker.json

# Writes all that a session's commands have made to the file that STATE names.
cat >state.tcl <<'TCL'
namespace eval state {
    variable system {argc argv argv0 env errorCode errorInfo auto_execs auto_index auto_path tcl_platform tcl_interactive}

    proc scope {name} {
        variable system
        set lines {}
        foreach variable [lsort [info vars ${name}::*]] {
            if {[string trimleft $variable :] in $system || [string match {::tcl_*} $variable]} continue
            if {[array exists $variable]} {
                foreach key [lsort [array names $variable]] {
                    lappend lines [list element $variable $key [set ${variable}($key)]]
                }
            } elseif {[info exists $variable]} {
                lappend lines [list variable $variable [set $variable]]
            } else {
                lappend lines [list declared $variable]
            }
        }
        foreach proc [lsort [info procs ${name}::*]] {
            set arguments [lmap argument [info args $proc] {
                if {[info default $proc $argument value]} {list $argument $value} else {list $argument}
            }]
            lappend lines [list proc $proc $arguments [info body $proc]]
        }
        foreach child [lsort [namespace children ${name}::]] {
            if {$child in {::tcl ::oo ::omu ::common ::zlib ::state}} continue
            lappend lines [list namespace $child] {*}[scope $child]
        }
        return $lines
    }

    proc properties {} {
        set lines {}
        foreach objects [list [get_cells -quiet -hierarchical] [get_nets -quiet -hierarchical] [get_ports -quiet]] {
            foreach object $objects {
                foreach name [lsort [list_property $object]] {
                    lappend lines [list property [get_property name $object] $name [get_property -quiet $name $object]]
                }
            }
        }
        return $lines
    }

    proc write {file} {
        set channel [open $file w]
        puts $channel [join [scope ""] \n]
        foreach name [list_param] {puts $channel [list parameter $name [get_param $name]]}
        puts $channel [join [properties] \n]
        close $channel
    }
}
state::write $env(STATE)
namespace delete state
TCL

# same_state: whether the sessions left the same state behind, and it is one of a session that has done something.
same_state() {
    diff first.state second.state >"$scratch/out" && [[ $(grep -c '' first.state) -gt 100 ]]
}

cat >library.tcl <<TCL
namespace eval pumps {
    variable count 0
    proc make {name {size 3}} {
        variable count
        incr count
        return "pump \$name of \$size"
    }
}
set from_library [pumps::make first]
TCL

cat >session.tcl <<TCL
set a 1
set b "text with \\"quotes\\", \$a and a \\\\"
set c {braces { and } more}
array set table {one 1 two {2 2}}
proc area {width {height 2} args} {
    # a comment { that } counts
    expr {\$width * \$height}
}
set d [area 3]; set e [area 3 4]
foreach i {1 2 3} {
    lappend squares [expr {\$i ** 2}]
}
set continued \\
    here
source library.tcl
source -notrace library.tcl
pumps::make second 9
set_param general.maxThreads 3
set_param messaging.showTclStack 2
set_param boardStore.destDir {a directory}
set_param tcl.collectionResultDisplayLimit 17
reset_param messaging.showTclStack
set_param tcl.undoStackSize 20
read_netlist $blinker
set_property dont_touch true [get_cells u_*]
startgroup
set_property dont_touch false [get_cells u_first]
create_property -type int -default_value 3 level cell
set_property level 7 [get_cells u_second]
endgroup
undo
redo
set_property level 8 [get_cells u_first]
set_property level 9 [get_cells u_first]
undo
history keep 50
rename area surface
set f [surface 5]
unset a
set ü "ä 中"
# a comment
set last 1;# behind a command

set steps [list undo [undo -list] redo [redo -list]]
source state.tcl
TCL

# What is typed into a pipe.
STATE=first.state input=session.tcl run "$corvane" -mode tcl -log first.log -journal first.jou
check "the session ends well" status_is 0
check "the session's commands worked" shows_not ERROR
check "the session has changed a property" grep -q 'property u_first level 8' first.state
check "the session has a step to redo" grep -q 'set_property level 9 u_first' first.state
STATE=second.state run "$corvane" -mode batch -log second.log -journal second.jou -source first.jou
check "the journal can be sourced" status_is 0
check "a sourced journal makes the state of the session" same_state
STATE=second.state input=first.jou run "$corvane" -mode tcl -log second.log -journal second.jou
check "the journal can be typed in" status_is 0
check "a journal that is typed in makes the state of the session" same_state
rm -f second.state
STATE=second.state run "$corvane" -mode batch -log third.log -journal third.jou -source second.jou
check "the journal of a replay replays in turn" same_state

# What is typed at a prompt: incomplete commands, errors, an interrupt.
cat >prompt.exp <<'EXPECT'
set timeout 30
proc fail {what} {puts "FAILED: $what"; exit 99}
proc type {line {pattern {[Cc]orvane% $}}} {
    send -- "$line\r"
    expect {
        -re $pattern {}
        timeout {fail "no answer to: $line"}
        eof {fail "the session ended at: $line"}
    }
}
spawn -noecho [lindex $argv 0] -mode tcl -log first.log -journal first.jou
expect -re {[Cc]orvane% $}
type "set x 1"
type "proc twice \{n\} \{" {[->] $}
type "    expr \{\$n * 2\}" {[->] $}
type "\}"
type "set y \[twice 21\]"
type "incr x"
type "!!"
type "lappend list one"
type "^one^two"
type "!lap; incr x"
type "history redo 3"
type "!nosuch"
type "lapp list three"
type "set_param general.maxThreads 4"
type "set_param general.maxThreads much"
type "touch made.by.program; set touched \[file exists made.by.program\]"
type "nosuchcommand"
type "set half \{a; error away; set never 1"  {[->] $}
send "\003"
expect -re {[Cc]orvane% $}
type "set z 1; error away; set never 1"
type "read_netlist [lindex $argv 1]"
type "set_property dont_touch true \[get_cells u_first\]"
type "set_property dont_touch false \[get_cells u_first\]"
type "undo"
type "set steps \[list undo \[undo -list\] redo \[redo -list\]\]"
type "source state.tcl"
send "exit 3\r"
expect eof
exit [lindex [wait] 3]
EXPECT
rm -f first.* second.* third.*
STATE=first.state run timeout 100 expect prompt.exp "$corvane" "$blinker"
check "the session at a prompt ends with its own status" status_is 3
check "what was typed at the prompt took effect" grep -qx 'variable ::x 4' first.state
rm -f made.by.program
STATE=second.state input=first.jou run "$corvane" -mode tcl -log second.log -journal second.jou
check "a journal with failed commands can be typed in to its end" status_is 0
check "a journal with failed commands makes the state of the session" same_state
check "a program that was run at the prompt is run again" test -e made.by.program

# A script that is run by the command line, with what it sources, is one command of the journal.
grep -v '^source state.tcl' session.tcl >work.tcl
rm -f first.* second.* third.*
STATE=first.state run "$corvane" -mode batch -log first.log -journal first.jou -source work.tcl -source state.tcl
check "the script ends well" status_is 0
check "the log has the commands of the script" file_has first.log '# set_param general.maxThreads 3'
check "the log has the commands of what it sources, deeper" file_has first.log '## set from_library [pumps::make first]'
check "the journal has none of them" file_has_not first.jou 'set_param'
STATE=second.state run "$corvane" -mode batch -log second.log -journal second.jou -source first.jou
check "a journal of scripts makes the state of the session" same_state

finish

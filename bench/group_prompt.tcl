# What the prompt on a terminal costs: until the first one is there, from a key to its echo, a long line and a
# pasted block. The yardstick is tclsh, and where that has no line editing, bash with its own.

package require Expect
source [file join [file dirname [info script]] measure.tcl]
set corvane [file join [lindex $argv 0] root bin corvane]
set home [string trim [exec mktemp -d]]
set env(HOME) $home
set env(TERM) xterm
set stty_init {columns 80 rows 24}
log_user 0
set timeout 60
match_max 4000000

proc session {program} {
    uplevel #0 [list spawn -noecho {*}$program]
}

proc await {pattern} {
    global expect_out spawn_id
    expect {
        -re $pattern {}
        default {error "the session does not answer"}
    }
}

proc leave {} {
    global spawn_id
    send "\025exit\r"
    expect eof
    wait
}

proc microseconds {script} {
    set start [clock microseconds]
    uplevel 1 $script
    return [expr {[clock microseconds] - $start}]
}

proc first_prompt {program prompt} {
    set time [microseconds {
        session $program
        await $prompt
    }]
    leave
    return $time
}

# From sending a key until the terminal shows it.
proc echo_time {count} {
    set times {}
    for {set i 0} {$i < $count} {incr i} {
        lappend times [microseconds {
            send x
            await x
        }]
        if {$i % 50 == 49} {
            send "\025"
            after 20
            expect -timeout 0 -re .+ {}
        }
    }
    return [lindex [lsort -real $times] [expr {$count / 2}]]
}

proc in_session {program prompt script} {
    session $program
    await $prompt
    after 100
    set result [uplevel 1 $script]
    leave
    return $result
}

set ours [list $corvane -mode tcl -quiet -nolog -nojournal]
set bash [list bash --norc --noprofile -i]
set runs 21

row "first prompt after start" [median $runs {first_prompt $ours {corvane% $}}] \
    "tclsh8.6" [median $runs {first_prompt tclsh8.6 {% $}}] us "<= 8"
row "a key to its echo" [in_session $ours {corvane% $} {echo_time 500}] \
    "bash with readline" [in_session $bash {[#\$] $} {echo_time 500}] us "<= 2"

set line "string length [string repeat abcdefghij 1000]"
proc long_line {} {
    global line
    return [microseconds {
        send "$line\r"
        await {[\r\n]10000\r}
    }]
}
set shell_line "x=[string repeat abcdefghij 1000]; echo \${#x}"
proc shell_long_line {} {
    global shell_line
    return [microseconds {
        send "$shell_line\r"
        await {[\r\n]10000\r}
    }]
}
row "a line of 10,000 characters, typed and run" [in_session $ours {corvane% $} long_line] \
    "bash with readline" [in_session $bash {[#\$] $} shell_long_line] us "<= 3"

proc pasted {text result} {
    return [microseconds {
        send "\033\[200~$text\033\[201~\r"
        await $result
    }]
}
set block [string repeat "incr total\r" 10000]
set shell_block [string repeat ": \$((total += 1))\r" 10000]
row "a pasted block of 10,000 lines, taken and run" \
    [in_session $ours {corvane% $} {pasted "set total 0\r${block}list sum \$total" {[\r\n]sum 10000\r}}] \
    "bash with readline" \
    [in_session $bash {[#\$] $} {
        send "bind 'set enable-bracketed-paste on'\r"
        after 300
        expect -timeout 0 -re .+ {}
        pasted "total=0\r${shell_block}echo sum \$total" {[\r\n]sum 10000\r}
    }] us "<= 1"
file delete -force $home

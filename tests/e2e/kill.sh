# A session that is killed at any moment leaves a log with every line whose command had finished.
source "$(dirname -- "${BASH_SOURCE[0]}")/lib.sh"

# Each script sends numbered messages without end and notes, in a file that is written at once, which of them it
# has come past.
start='set_param messaging.defaultLimit 2147483647
set progress [open progress a]
fconfigure $progress -buffering none'
printf '%s\n' "$start" 'proc work {i} {
    send_msg_id {Kill 17-1} INFO "line $i"
    puts $::progress $i
}
for {set i 1} {1} {incr i} {work $i}' >in_a_procedure.tcl
{
    printf '%s\n' "$start"
    for ((i = 1; i <= 60000; ++i)); do
        printf 'send_msg_id {Kill 17-1} INFO {line %d}\nputs $progress %d\n' "$i" "$i"
    done
} >line_by_line.tcl

{
    printf 'set progress [open progress a]\nfconfigure $progress -buffering none\n'
    for ((i = 1; i <= 60000; ++i)); do printf 'puts $progress %d\n' "$i"; done
} >typed

# start OPTION...: starts a session in the background and waits until its first progress. Leaves its id in $pid.
start() {
    rm -f progress kill.log kill.jou
    "$corvane" -log kill.log "$@" <"${input:-/dev/null}" >/dev/null 2>&1 &
    pid=$!
    until [[ -s progress ]]; do
        kill -0 "$pid" 2>/dev/null || { wait "$pid"; printf 'the session ended by itself with status %s\n' "$?"; return 1; }
        sleep 0.002
    done
}

# kill_it: kills the session a random time later, and counts its progress in $noted.
kill_it() {
    sleep "0.0$((RANDOM % 90 + 10))"
    kill -KILL "$pid"
    wait "$pid" 2>/dev/null
    noted=$(grep -c '' progress)
    ((noted > total_noted)) && total_noted=$noted
}

# kill_one SCRIPT OPTION...: kills a session that sources it, a random time after the first message. Says what is
# wrong with the log.
kill_one() {
    local script=$1 complete echoed
    shift
    start -mode batch -nojournal "$@" -source "$script" || return
    kill_it
    complete=$(grep '^INFO: \[Kill 17-1\] line ' kill.log | awk '$NF == NR {n = NR} END {print n + 0}')
    ((complete >= noted)) || printf 'noted %s, in the log %s\n' "$noted" "$complete"
    if [[ $script == line_by_line.tcl ]]; then
        # The one that was noted last may not have come to its end.
        echoed=$(grep -c '^# puts \$progress ' kill.log)
        ((echoed >= noted - 1)) || printf 'noted %s, commands in the log %s\n' "$noted" "$echoed"
    fi
}

# kill_typed: the same to a session whose commands are typed; looks into log and journal.
kill_typed() {
    local file recorded
    input=typed start -mode tcl -journal kill.jou || return
    kill_it
    for file in kill.log kill.jou; do
        recorded=$(grep '^puts \$progress ' "$file" | awk '$NF == NR {n = NR} END {print n + 0}')
        ((recorded >= noted)) || printf 'noted %s, in %s %s\n' "$noted" "$file" "$recorded"
    done
}

total_noted=0
for ((round = 0; round < 50; ++round)); do
    kill_one in_a_procedure.tcl -notrace >>lost
    kill_one line_by_line.tcl >>lost
done
for ((round = 0; round < 30; ++round)); do kill_typed >>lost_typed; done
out=$(<lost)$(<lost_typed) err=
check "no line of a finished command is lost in a hundred killed sessions" test ! -s lost
check "no typed command is lost in thirty killed sessions" test ! -s lost_typed
check "the sessions were killed amid their work" test "$total_noted" -gt 100

finish

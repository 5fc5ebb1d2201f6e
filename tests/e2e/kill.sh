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

# kill_one SCRIPT OPTION...: kills a session that sources it, a random time after the first message. Says what is
# wrong with the log.
kill_one() {
    local script=$1 pid noted complete echoed
    shift
    rm -f progress kill.log
    "$corvane" -mode batch -log kill.log -nojournal "$@" -source "$script" </dev/null >/dev/null 2>&1 &
    pid=$!
    until [[ -s progress ]]; do
        kill -0 "$pid" 2>/dev/null || { printf 'the session ended by itself\n' && return; }
        sleep 0.002
    done
    sleep "0.0$((RANDOM % 90 + 10))"
    kill -KILL "$pid"
    wait "$pid" 2>/dev/null
    noted=$(grep -c '' progress)
    complete=$(grep '^INFO: \[Kill 17-1\] line ' kill.log | awk '$NF == NR {n = NR} END {print n + 0}')
    ((complete >= noted)) || printf 'noted %s, in the log %s\n' "$noted" "$complete"
    if [[ $script == line_by_line.tcl ]]; then
        # The one that was noted last may not have come to its end.
        echoed=$(grep -c '^# puts \$progress ' kill.log)
        ((echoed >= noted - 1)) || printf 'noted %s, commands in the log %s\n' "$noted" "$echoed"
    fi
    ((noted > total_noted)) && total_noted=$noted
}

total_noted=0
for ((round = 0; round < 50; ++round)); do
    kill_one in_a_procedure.tcl -notrace >>lost
    kill_one line_by_line.tcl >>lost
done
out=$(<lost) err=
check "no line of a finished command is lost in a hundred killed sessions" test ! -s lost
check "the sessions were killed amid their work" test "$total_noted" -gt 100

finish

# A message database is whole up to its last batch, whatever ends the session that writes it.
source "$(dirname -- "${BASH_SOURCE[0]}")/lib.sh"

query() { sqlite3 -readonly "$1" "$2" 2>&1; }

# A session that ends by itself completes its databases.
printf 'create_msg_db a.db\nsend_msg_id A-1 INFO one\nsend_msg_id -continue A-2 ERROR two\nexit 3\n' >exits.tcl
run "$corvane" -mode batch -nolog -nojournal -source exits.tcl
check "exit keeps its status" status_is 3
check "exit completes the database" test "$(query a.db "select count(*) from messages where id like 'A-%'")" = 2
check "nothing stays beside it" test "$(echo a.db*)" = a.db
check "each message names its command" test \
    "$(query a.db "select command from messages where id = 'A-1'")" = 'send_msg_id A-1 INFO one'
printf 'create_msg_db b.db\nsend_msg_id -continue A-1 INFO one\nerror broken\n' >fails.tcl
run "$corvane" -mode batch -nolog -nojournal -notrace -source fails.tcl
check "a session that ends with an error completes it too" test "$(query b.db "select count(*) from messages where id = 'A-1'")" = 1

# One that is killed leaves whole batches: messages without a gap from the first one on.
printf '%s\n' 'set_param messaging.defaultLimit 2147483647' 'create_msg_db k.db' \
    'proc work {i} {send_msg_id {Kill 17-1} INFO "line $i"}' \
    'for {set i 1} {1} {incr i} {work $i}' >endless.tcl
most=0
for ((round = 0; round < 20; ++round)); do
    rm -f k.db k.db-*
    "$corvane" -mode batch -nolog -nojournal -notrace -quiet -source endless.tcl </dev/null >/dev/null 2>&1 &
    pid=$!
    until [[ -s k.db-wal ]]; do
        kill -0 "$pid" 2>/dev/null || break
        sleep 0.01
    done
    sleep "0.$((RANDOM % 40 + 10))"
    kill -KILL "$pid"
    wait "$pid" 2>/dev/null
    [[ $(sqlite3 k.db 'pragma integrity_check') == ok ]] || echo "round $round: not whole" >>bad
    read -r count first last gaps < <(sqlite3 -separator ' ' k.db \
        "select count(*), min(sequence), max(sequence), sum(id = 'Kill 17-1' and text <> 'line ' || n) from
         (select *, row_number() over (partition by id order by sequence) n from messages)")
    [[ $count == "$last" && $first == 1 && $gaps == 0 ]] || echo "round $round: $count $first $last $gaps" >>bad
    ((count > most)) && most=$count
done
[[ -e bad ]] && out=$(<bad)
check "twenty killed sessions left whole databases without gaps" missing bad
check "the sessions were killed amid their work" test "$most" -gt 1000

# The next session reads what the killed one has left, and may replace it.
printf 'puts "count: [debug::get_messages -file k.db -severity INFO]"\ncreate_msg_db k.db\n' >next.tcl
run "$corvane" -mode batch -nolog -nojournal -notrace -source next.tcl
check "the next session reads it" matches 'count: [1-9][0-9]{3,}'
check "the next session replaces it" status_is 0
check "nothing of the old one turns up in the new one" test "$(query k.db "select count(*) from messages where id = 'Kill 17-1'")" = 0

# Two sessions do not get into each other's way.
mkfifo go
printf 'create_msg_db s.db\nsend_msg_id S-1 INFO mine\nputs ready\nflush stdout\ngets [open go]\nsend_msg_id S-2 INFO mine\n' >first.tcl
"$corvane" -mode batch -nolog -nojournal -notrace -source first.tcl </dev/null >first.out 2>&1 &
pid=$!
until grep -qs ready first.out || ! kill -0 "$pid" 2>/dev/null; do sleep 0.05; done
printf 'create_msg_db s.db\n' >second.tcl
run "$corvane" -mode batch -nolog -nojournal -notrace -source second.tcl
check "a database that another session writes is not replaced" shows "[Common 17-5480] The message database 's.db' cannot be created: another program has locked it."
timeout 30 bash -c "echo >go"
wait "$pid"
check "the first session has gone on writing" test "$(query s.db "select group_concat(id) from messages where id like 'S-%'")" = S-1,S-2

# A limit on the size of files stands in for a full disk.
printf '%s\n' 'set_param messaging.defaultLimit 2147483647' 'create_msg_db full.db' 'set text [string repeat x 1000]' \
    'for {set i 0} {$i < 20000} {incr i} {send_msg_id F-1 INFO $text}' 'puts "code [catch {close_msg_db full.db} m] $m"' \
    'puts finished' >full.tcl
run bash -c 'ulimit -f 4096; trap "" XFSZ; "$@" | grep -v "^INFO: .F-1"' - "$corvane" -mode batch -nolog -nojournal -notrace -quiet -source full.tcl
check "a database that cannot grow is told once" shows_once 17-5482
check "closing it fails with the reason" matches "code 1 ERROR: .Common 17-5486. The message database 'full.db' does not have all messages: "
check "the session goes on" shows finished
check "the database is whole up to there" test "$(query full.db 'pragma integrity_check')" = ok

# The installed message files are looked for where the installation is.
cp -r -- "$app_root" root
rm -r root/data/msg
printf 'puts "code [catch {debug::validate_msg_files} m] $m"\n' >validate.tcl
run root/bin/corvane -mode batch -nolog -nojournal -notrace -source validate.tcl
check "an installation without message files is told" shows 'code 1 {ERROR : OMU_DATADIR "/msg" does not exist.}'

finish

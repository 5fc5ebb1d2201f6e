# The Tab key at a real terminal: what it finishes, what it lists, and what it leaves alone.
source "$(dirname -- "${BASH_SOURCE[0]}")/lib.sh"

cat >keys.exp <<'EXPECT'
proc begin {{columns 80} {type xterm} args} {
    start $columns $type {*}$args
    send "source -notrace setup.tcl\r"
    see "the set-up" {ready\r+\n.*corvane% $}
}
# Types keys and Enter; the words that the command then got are the proof of what stood in the line.
proc gives {keys words} {
    send -- "$keys\r"
    see "the line after the keys $keys" "got \\([string map {| \\| * \\* . \\. \[ \\\[ $ \\$ \\ \\\\ \{ \\\{ \} \\\} ( \\( ) \\)} $words]\\)\r"
    see "a prompt after the keys $keys" {corvane% $}
}
# Types keys, sees something, and takes the line back.
proc shows {keys pattern} {
    send -- $keys
    see "what the keys $keys show" $pattern
    send "\003"
    see "a prompt after the keys $keys" {corvane% $}
}
EXPECT

cat >setup.tcl <<'TCL'
proc wkgot args {
    puts "got ([join $args |])"
}
proc wkother args {}
namespace eval wkspace {
    proc only args {wkgot only {*}$args}
    namespace eval deep {}
}
namespace eval wkwide {
    proc one args {}
    proc once args {}
}
set wkvariable value
array set wkarray {first 1 second 2}
proc wkbomb args {exit 7}
set_param tcl.undoStackSize 77
puts ready
TCL
mkdir -p wkdir/inner
touch wkdir/file.txt wkfile_one.tcl wkfile_other.tcl 'wksome file.txt' wkgröße.txt

on_terminal "commands, namespaces and options are completed" <<'EXPECT'
source keys.exp
begin 80 xterm -nolog -nojournal
shows "\t" { get_property .*omu:: .*puts .*wkgot wkother wkspace:: .*corvane% $}
gives "wkg\tx" x
gives "  wkg\tx" x
gives "wkspace::o\tx" only|x
gives "wksp\tonly x" only|x
shows "wkwide::o\t" {wkwide::once wkwide::one \r\n.*corvane% wkwide::on}
gives "wkgot \[wkgo\t\]" {}
shows "puts \[get_prop\t" {get_prop.*erty }
gives "wkgot \[get_para\t-na\ttcl.undoStackSi\t\]" 77
shows "get_property -o\t" {get_property -o.*bject }
shows "get_property -\t" {-max -min -name -object \r\n.*corvane% get_property -}
gives "set x 1; wkgot a; get_param -na\ttcl.notrace; wkg\tb" b
gives "set x \"a;b\"; wkg\tb" b
send "set y 5; get_param -na\ttcl.undoStackSize\r"
see "an option behind a semicolon, in its place" {\r\n77\r\n.*corvane% $}
shows "nosuchcommand\t" {nosuchcommand\a}
gives "wkgot a\001\033\[C\033\[C\033\[C\t" ot|a
send " tail\001wkg\t\r"
see "a word completed before the rest of the line" {got \(tail\)\r+\n.*corvane% $}
gives "foreach x \{a\} \{wkspace::o\t\$x\}" only|a
send "if 1 \{\r"
see "the prompt for the rest of a command" {corvane- $}
send "wkg\tinside\r"
see "the prompt for the rest of a command" {corvane- $}
send "\}\r"
see "a command completed in the second line" {got \(inside\)\r+\n.*corvane% $}
send "exit 3\r"
finish 3
EXPECT

on_terminal "files, values and variables are completed" <<'EXPECT'
source keys.exp
begin 80 xterm -nolog -nojournal
gives "wkgot wkdi\tf\t" wkdir/file.txt
gives "wkgot wkdi\ti\tx" wkdir/inner/x
shows "wkgot wkf\t" {wkfile_one.tcl wkfile_other.tcl \r\n.*corvane% wkgot wkfile_o}
gives "wkgot wkfile_on\tx" wkfile_one.tcl|x
gives "wkgot wks\tx" {wksome file.txt|x}
gives "wkgot \"wks\tx" {wksome file.txt|x}
gives "wkgot \{wks\tx" {wksome file.txt|x}
gives "wkgot wkg\tx" "wkgr\u00f6\u00dfe.txt|x"
gives "wkgot wkgr\u00f6\tx" "wkgr\u00f6\u00dfe.txt|x"
shows "wkgot wkd\t\t" {ir/.*file.txt inner/ \r\n.*corvane% wkgot wkdir/}
shows "wkgot nosuchfile\t" {\a}
gives "wkgot \$wkv\tx" value|x
gives "wkgot \$wka\tsec\tx" 2|x
gives "wkgot \"\$wkv\t!\"" value!
shows "set_param tcl.notrace \t" {\r\nfalse true \r\n.*corvane% set_param tcl.notrace }
gives "wkgot \[get_param tcl.undoSta\t\]" 77
shows "create_property note \t" {\r\n.*cell .*port .*\r\n.*corvane% create_property note }
shows "create_property \t" {\r\n<name> \r\n.*corvane% create_property }
shows "send_msg_id -severity C\t" {C.*RITICAL\\ WARNING }
shows "list_property -class ce\t" {ce.*ll }
shows "get_property ref_n\t" {ref_n.*ame }
shows "load_features netl\t" {netl.*ist_report }
send "exit 3\r"
finish 3
EXPECT

on_terminal "nothing that is typed is run before Enter" <<'EXPECT'
source keys.exp
begin
foreach keys {"foo \[exit 9\]\t" "wkgot \[wkbomb\] wk\t" "wkgot \$a(\[wkbomb\])\t" "\[wkbomb\] -c\t"
    "wkgot \"x \[wkbomb\] wk\t" "wkgot -x\[wkbomb\]\t" "wkgot \{*\}\[wkbomb\] \t"} {
    shows $keys {\a}
}
foreach keys {"\[\[\[\{\"\t" "\}\}\]\t" "\"\t" "\\\t" "\$\{\t" "\{\t" "x ~nosuchuser/\t" "\302\202\303\t" "\[\t"} {
    send -- $keys
    send "\003"
    see "a prompt after the keys $keys" {corvane% $}
}
shows "wkgot [string repeat x 5000] -a\t" {Unable to tab complete due to command line length\.\r\n.*\a}
send "error broken {the stack} {ITS CODE}\r"
see "an error" {broken\r\n.*corvane% $}
send "wkgot nosuchfile\t\003"
see "a prompt" {corvane% $}
gives "wkgot \$errorInfo \$errorCode" {the stack|ITS CODE}
send "exit 3\r"
finish 3
EXPECT
check "the journal has what was entered" file_has corvane.jou 'wkgot $errorInfo $errorCode'
check "the journal has nothing of completion" file_has_not corvane.jou 'omu::'
check "the log has nothing of completion" file_has_not corvane.log 'Unable to tab complete'

on_terminal "completion works on a dumb and on a narrow terminal" <<'EXPECT'
source keys.exp
begin 80 dumb -nolog -nojournal
gives "wkg\twkfile_on\tx" wkfile_one.tcl|x
shows "wkgot wkf\t" {wkfile_one.tcl wkfile_other.tcl }
send "exit 3\r"
finish 3
begin 20 xterm -nolog -nojournal
gives "wkg\twkfile_on\twkfile_ot\tx" wkfile_one.tcl|wkfile_other.tcl|x
shows "wkgot wkf\t" {wkfile_one.tcl.*wkfile_other.tcl }
send "exit 3\r"
finish 3
EXPECT

finish

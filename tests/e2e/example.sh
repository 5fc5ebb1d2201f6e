# The example's report: a netlist is read, queried and reported in batch mode, with log and journal.
source "$(dirname -- "${BASH_SOURCE[0]}")/lib.sh"

example=$sources/examples/uart

run "$corvane" -mode batch -notrace -source "$example/report.tcl"
check "the report ends with 0" status_is 0
check "the report counts the leaf cells" matches 'Design uart: [0-9]+ cells, [0-9]+ nets, 27 port bits'
check "the report counts cells by type" matches $'\nLUT4 +[1-9][0-9]* +#+\n'
check "both FIFOs have as many flip-flops" \
    test "$(sed -n 's/^rx_fifo  *//p' <<<"$out")" = "$(sed -n 's/^tx_fifo  *//p' <<<"$out")"
check "the report gives the width of a bus" matches $'\nin +wr_data +8\n'
check "the log tells what was read" file_has corvane.log "Read the design 'uart'"
check "the log has the banner" file_has corvane.log "# Process ID"
check "the journal names the script" file_has corvane.jou "source $example/report.tcl"
check "no error is shown" shows_not "ERROR"

# The cells that the report counts are those of the netlist, counted by the tool that made it.
count=$(yosys -q -p "read_json $example/uart.json; hierarchy -top uart; flatten
    tee -o /dev/stdout select -count t:LUT* t:DFF*" | sed -n 's/ objects\.$//p')
check "Yosys counts as many cells" shows "Design uart: $count cells"

finish

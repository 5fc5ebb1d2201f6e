#!/usr/bin/env bash
# Makes uart.json from uart.v with Yosys. The hierarchy is kept, so that reports can speak of its instances.
set -euo pipefail
cd -- "$(dirname -- "${BASH_SOURCE[0]}")"

yosys -q -p '
    read_verilog -lib library.v
    read_verilog uart.v
    synth -top uart -nordff
    dfflegalize -cell $_DFF_P_ x -cell $_DFFE_PP_ x -cell $_SDFFCE_PP0P_ x
    abc -lut 4
    techmap -map map.v
    opt_clean -purge
    autoname
    check -assert
    write_json uart.json
'

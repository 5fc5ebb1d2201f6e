# A copy of the application root works wherever it stands, under whatever name.
source "$(dirname -- "${BASH_SOURCE[0]}")/lib.sh"

copy="$scratch/a copy"
cp -r -- "$app_root" "$copy"
cat >where.tcl <<'TCL'
puts "root=[omu::get_app_root]"
puts "package=[package require omu::commontasks]"
TCL

run "$copy/bin/corvane" -mode batch -nolog -nojournal -source where.tcl
check "a copy runs" status_is 0
check "a copy is its own root" shows "root=$(cd -- "$copy" && pwd -P)"

ln -s -- "$copy/bin/corvane" link
run ./link -mode batch -nolog -nojournal -source where.tcl
check "a link to the program finds the root behind it" shows "root=$(cd -- "$copy" && pwd -P)"

PATH="$copy/bin:$PATH" run corvane -mode batch -nolog -nojournal -source where.tcl
check "a program found on the path finds its root" shows "root=$(cd -- "$copy" && pwd -P)"

mkdir -p front/scripts
printf 'a file of the front root\n' >front/scripts/mine.txt
printf 'puts "root=[omu::get_app_root -appfile scripts/mine.txt]"\n' >front.tcl
OMU_APPROOT=$PWD/front run "$copy/bin/corvane" -mode batch -nolog -nojournal -source front.tcl
check "OMU_APPROOT puts a root in front" shows "root=$PWD/front"

finish

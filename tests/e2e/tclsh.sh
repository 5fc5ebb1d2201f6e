# The command layer loads into a plain tclsh, also into its second interpreter.
source "$(dirname -- "${BASH_SOURCE[0]}")/lib.sh"

cat >load.tcl <<TCL
set library [list $app_root/lib/libzq_commontasks.so]
TCL
cat >>load.tcl <<'TCL'
load $library Omu_commontasks
puts "package=[package require omu::commontasks]"
puts "regress=[omu::is_regress]"
puts "refused=[catch {omu::get_app_root -appfile no/such/file} result]/$result"

set second [interp create]
load $library Omu_commontasks $second
puts "second=[$second eval omu::is_regress]"
interp delete $second
puts "first=[omu::is_regress]"

# The same library under its other name.
set third [interp create]
load $library Zq_commontasks $third
puts "third=[$third eval {package require omu::commontasks; omu::is_regress}]"
puts "exported=[namespace eval common {namespace export}]"
TCL

run tclsh8.6 load.tcl
check "the library loads and the process ends well" status_is 0
check "the package is provided" matches 'package=[0-9]+\.[0-9]+'
check "a task answers" shows "regress=0"
check "a task that fails is a Tcl error with an empty result" shows "refused=1/"
check "a second interpreter has the tasks" shows "second=0"
check "the first interpreter lives on" shows "first=0"
check "the other entry point serves too" shows "third=0"
check "the namespace common exports all it has" shows "exported=*"
check "nothing is written where it was loaded" test "$(ls -A)" = load.tcl

cat >skip.tcl <<TCL
set library [list $app_root/lib/libzq_commontasks.so]
TCL
cat >>skip.tcl <<'TCL'
namespace eval omu {variable skip_driver 0}
load $library Omu_commontasks
puts "main=[info commands ::omu::main] version=[info commands ::common::version]."
TCL
run tclsh8.6 skip.tcl
check "omu::skip_driver keeps the session's commands out" prints "main= version=."
check "and the process ends well" status_is 0

finish

# The command layer loads into a plain tclsh, also into its second interpreter.
source "$(dirname -- "${BASH_SOURCE[0]}")/lib.sh"

export library=$app_root/lib/libzq_commontasks.so

cat >load.tcl <<'TCL'
set library $env(library)
load $library Omu_commontasks
puts "package=[package require omu::commontasks]"
puts "regress=[omu::is_regress]"
puts "refused=[catch {omu::get_app_root -appfile no/such/file} result]/$result"

set second [interp create]
load $library Omu_commontasks $second
puts "second=[$second eval omu::is_regress]"
interp delete $second
puts "first=[omu::is_regress]"
puts "driver=[info commands ::omu::main]"
puts "exported=[namespace eval common {namespace export}]"
TCL

run tclsh8.6 load.tcl
check "the library loads and the process ends well" status_is 0
check "the package is provided" matches 'package=[0-9]+\.[0-9]+'
check "a task answers" shows "regress=0"
check "a task that fails is a Tcl error with an empty result" shows "refused=1/"
check "a second interpreter has the tasks" shows "second=0"
check "the first interpreter lives on" shows "first=0"
check "the namespace common exports all it has" shows "exported=*"
check "the session's commands are there" shows "driver=::omu::main"
check "nothing is written where it was loaded" test "$(ls -A)" = load.tcl

cat >other.tcl <<'TCL'
load $env(library) Zq_commontasks
puts "package=[package require omu::commontasks] regress=[omu::is_regress]"
TCL
run tclsh8.6 other.tcl
check "the other entry point gives the same" matches '^package=[0-9]+\.[0-9]+ regress=0$'
check "and the process ends well with it" status_is 0

cat >skip.tcl <<'TCL'
namespace eval omu {variable skip_driver 0}
load $env(library) Omu_commontasks
puts "main=[info commands ::omu::main] version=[info commands ::common::version]."
TCL
run tclsh8.6 skip.tcl
check "omu::skip_driver keeps the session's commands out" prints "main= version=."
check "and the process ends well" status_is 0

finish

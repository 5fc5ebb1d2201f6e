#!/usr/bin/env bash
# Further interpreters of a session, and encrypted scripts as a user of an installation meets them.
source "$(dirname -- "${BASH_SOURCE[0]}")/lib.sh"

cat >slaves.tcl <<'TCL'
set first [omu::create_slave]
set second [omu::create_slave]
puts "names=$first,$second"
puts "answer=[$first eval {get_param general.maxThreads}]"
$second eval {proc untraced {} {return yes}; untraced}
puts "safe=[catch {omu::create_slave -safe caged} reason]/$reason"
omu::delete_slave $first
puts "left=[interp slaves]"
TCL
run "$corvane" -mode batch -source slaves.tcl
check "a session makes and deletes interpreters" status_is 0
check "unnamed ones are counted from 0" shows "names=ormeau:slave0,ormeau:slave1"
check "they have the tool's commands" shows "answer=8"
check "a safe one cannot load them and says so" \
    shows "safe=1/ERROR: [Common 17-233] The commands could not be loaded into the interpreter 'caged': invalid command name \"load\""
check "a deleted one is gone" matches 'left=.*ormeau:slave1'
check "no error file was written" missing slave_creation_error.log

cat >product.tcl <<'TCL'
omu::create_slave worker
puts "design=[worker eval {llength [info commands get_cells]}]"
TCL
run "$corvane" -mode batch -source product.tcl
check "an interpreter has the commands of the product" shows "design=1"
run "$corvane" -mode batch -nointernaltcl -source product.tcl
check "without the product's libraries there are none" shows "design=0"
rm -f -- *.log *.jou

cat >taken.tcl <<'TCL'
omu::create_slave twice
omu::create_slave twice
TCL
run "$corvane" -mode batch -source taken.tcl
check "a taken name ends the script" status_is 1
check "and is told once" shows_once "[Common 17-232] The interpreter 'twice' cannot be created."
check "Tcl's reason is in a file" file_has slave_creation_error.log \
    'Failed to create slave interpreter: interpreter named "twice" already exists'

# In plain Tcl the library is loaded by its path; its slaves find it as the one that is loaded.
export library=$app_root/lib/libzq_commontasks.so
cat >plain.tcl <<'TCL'
load $env(library) Zq_commontasks
set before [omu::create_slave before]
load [file join [file dirname $env(library)] libzq_design.so] Zq_design
set slave [omu::create_slave]
puts "answer=[$slave eval omu::is_regress] import=[$slave eval {llength [info commands get_param]}]"
puts "design=[$before eval {info commands get_cells}],[$slave eval {info commands get_cells}]"
omu::delete_slave before
for {set i 0} {$i < 20} {incr i} {omu::delete_slave [omu::create_slave]}
puts "left=[interp slaves]"
TCL
run tclsh8.6 plain.tcl
check "slaves work in plain Tcl" shows "answer=0 import=1"
check "they have the libraries that their creator has by then" shows "design=,get_cells"
check "and go" shows "left=ormeau:slave0"
check "and the process ends well" status_is 0

# The release's owner writes a script with the installation's key; the user has both.
cp -r -- "$app_root" installation
mkdir -p installation/data
cat >plain_part.tcl <<'TCL'
puts "a plain part runs"
TCL
cat >secret.tcl <<'TCL'
# PLAINTEXT of a comment
proc PLAINTEXT_proc {value} {
    return "PLAINTEXT result of $value"
}
set PLAINTEXT_variable [string length [PLAINTEXT_proc 1]]
source plain_part.tcl
get_param general.maxThreads
set ::answer $PLAINTEXT_variable
TCL
cat >failing.tcl <<'TCL'
set PLAINTEXT_variable 1
if {$PLAINTEXT_variable} {
    foreach PLAINTEXT_each {1 2} {error "the reason of the failure"}
}
TCL
cat >write.tcl <<'TCL'
debug::create_script_key installation/data/script.key
debug::encrypt_script -key installation/data/script.key secret.tcl secret.enc
debug::encrypt_script -key installation/data/script.key failing.tcl failing.enc
TCL
run "$corvane" -mode batch -source write.tcl
check "the owner writes a key and scripts" status_is 0
check "the key is its owner's alone" test "$(stat -c %a installation/data/script.key)" = 600
check "no temporary is left beside" test -z "$(find . -name '*.new*' -o -name '.corvane-*')"
mkdir owner
mv -- secret.tcl failing.tcl owner/
rm -f -- *.log *.jou

cat >use.tcl <<'TCL'
set before 1
source secret.enc
puts "answer=$answer"
set after 1
TCL
run installation/bin/corvane -mode batch -source use.tcl
check "an encrypted script is evaluated with the installation's key" shows "answer=21"
check "and what it sources" shows "a plain part runs"
check "the session ends well" status_is 0
check "commands before and after it are shown" shows "# set after 1"
check "nothing of it is shown" shows_not PLAINTEXT
check "the journal and the log have nothing of it" test -z "$(grep -l PLAINTEXT -- *.log *.jou)"
check "nor has any file" test -z "$(grep -rl PLAINTEXT --exclude-dir=owner . "$TMPDIR")"

cat >fail.tcl <<'TCL'
source failing.enc
TCL
run installation/bin/corvane -mode batch -source fail.tcl
check "an error of an encrypted script ends the session" status_is 1
check "its message is told" shows "the reason of the failure"
check "with file and line" shows '(file "failing.enc" line 2)'
check "and nothing of the script" shows_not PLAINTEXT
check "nor has any file" test -z "$(grep -rl PLAINTEXT --exclude-dir=owner . "$TMPDIR")"

run "$corvane" -mode batch -source use.tcl
check "another installation has no key" status_is 1
check "and says so" shows_once "[Common 17-5403] The encrypted file 'secret.enc' needs a key, and no key file is set up."
check "nothing was evaluated" shows_not "answer="

head -c -1 secret.enc >short.enc
cat >short.tcl <<'TCL'
source short.enc
TCL
run installation/bin/corvane -mode batch -source short.tcl
check "a file that was cut off is refused" status_is 1
check "and says so once" shows_once "[Common 17-5401] The encrypted file 'short.enc' ends before its last part."

# The line of the environment beats the installation's, the parameter beats both.
run env CORVANE_SCRIPT_KEY=nosuch.key installation/bin/corvane -mode batch -source use.tcl
check "the environment names another key file" shows "[Common 17-5405] The key file 'nosuch.key' cannot be read"

# What stands in the place of the library that encrypts is no library.
mkdir damaged
echo "no library" >damaged/"$(basename -- "$(strings "$app_root/lib/libzq_common.so" | grep '^libsodium\.so')")"
run env LD_LIBRARY_PATH="$PWD/damaged" installation/bin/corvane -mode batch -source use.tcl
check "without the library that encrypts nothing is evaluated" shows_not "answer="
check "and the session ends" status_is 1
check "with the reason" shows_once "[Common 17-5409] Encrypted scripts need the library libsodium, which cannot be used: "

# Sessions without encrypted scripts do not load the library that encrypts.
cat >maps.tcl <<'TCL'
set maps [open /proc/self/maps]
puts "loaded=[regexp sodium [read $maps]]"
close $maps
TCL
run installation/bin/corvane -mode batch -source maps.tcl
check "encryption costs nothing at the start" shows "loaded=0"

finish

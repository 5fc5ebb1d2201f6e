# Help as a user meets it: at the command line, at the prompt, in a batch script, and in a copied installation.
source "$(dirname -- "${BASH_SOURCE[0]}")/lib.sh"

# at_prompt COMMAND...: the commands as a pipe gives them; results are printed as the prompt prints them.
at_prompt() {
    printf 'puts [%s]\n' "$@" >"$scratch/commands"
    input=$scratch/commands run "$corvane" -mode tcl -nolog -nojournal
}
# Only the sentence that says how to go on is longer.
narrow() { [[ -z $(grep -v '^To list help on' "$scratch/out" | awk 'length > 80') ]]; }

at_prompt help
check "help lists the categories" shows_line_once "PropertyAndParameter"
check "help says how to go on" shows "type 'help -category <category>'"
check "no command of the tool is without a category" shows_not "17-20]"

at_prompt "help *" "help -category Object" "help -class *" "help get_property" "help help" "help -message {Common 17-153}"
check "nothing is wider than 80 columns" narrow
check "commands are in the summary" shows "get_property "
check "the page of a command is shown" shows "EXAMPLES"
check "a message is explained" shows "Resolution:"

at_prompt "help -class cell"
check "a class is explained" shows "A cell is one instance"
at_prompt "help -class cell -prop ref*"
check "a property is explained" shows "ref_name"

if [[ -d $app_root/share/tcl8.6 ]]; then
    at_prompt "help lassign"
    check "the manual of Tcl is at hand" shows "Assign list elements to variables"
    cp -r "$app_root" "$scratch/copy"
    corvane=$scratch/copy/bin/corvane
    at_prompt "help -w lassign"
    check "it travels with a copy of the installation" shows "$scratch/copy/share/tcl8.6/doc/eng/tcl/lassign"
    rm -rf "$scratch/copy/share" "$scratch/copy/doc"
    at_prompt "help -args get_param" "help -list get_para*"
    check "without any page help still knows the commands" shows "ARGUMENTS"
    check "and ends well" status_is 0
    at_prompt "help lassign"
    check "without the manual its topics do not exist" shows "No help topic matches 'lassign'."
    corvane=$app_root/bin/corvane
fi

at_prompt "help get_proprty"
check "an unknown name is refused" shows "No help topic matches 'get_proprty'."
check "names that are near are offered" shows "Similar topics: get_property"

printf 'help get_prop*\nputs after\n' >help.tcl
run "$corvane" -mode batch -nolog -nojournal -notrace -source help.tcl
check "a summary is shown in batch mode without a puts" shows_once "Get properties of object"
check "and the script goes on" shows_line_once "after"

printf 'help nosuchtopic\nputs after\n' >help.tcl
run "$corvane" -mode batch -nolog -nojournal -notrace -source help.tcl
check "an unknown name ends a batch script" status_is 1
check "its error is shown once" shows_once "No help topic matches 'nosuchtopic'."

# Directories of pages that another user keeps to himself; root itself may read everything.
mkdir -p closed/doc/eng/tcl
printf 'secret\n' >closed/doc/eng/tcl/page
chmod 000 closed/doc/eng/tcl
if ! ls closed/doc/eng/tcl >/dev/null 2>&1; then
    OMU_APPROOT=$PWD/closed at_prompt "help -w get_param"
    check "a directory that cannot be read is warned of" shows "17-5440"
    check "and help goes on" shows "tcl task: common::get_param"
fi
chmod 755 closed/doc/eng/tcl

finish

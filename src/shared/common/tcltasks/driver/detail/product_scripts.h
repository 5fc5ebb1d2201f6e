#pragma once

#include <string>
#include <tcl.h>

namespace driver::detail {

/// The product's name with a lower-case first letter, as files and help call it: "corvane".
const std::string& getLowerProductName();

} // namespace driver::detail

namespace omumain {

/// Sources the program's own script, "lib/scripts/omu/products/<program>.tcl" of the application root,
/// without tracing. Returns the script's code.
int sourceProgramInitScript(Tcl_Interp* interp);

/// Sources the scripts that prepare a session of this product: "scripts/<product>_init.tcl" of each
/// application root that has one, the installation's own first, then "<product>_init.tcl" in the user's data
/// directory. Each is shown as a command unless `quiet`, and traced unless `noTrace`. Returns the code of the
/// first that fails, which ends the walk.
int sourceProdInitTclScripts(Tcl_Interp* interp, bool noTrace, bool quiet);

} // namespace omumain

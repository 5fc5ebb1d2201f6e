# Gives the global names of the replaced commands to the omu:: commands and keeps Tcl's own under tcl::.

namespace eval ::tcl {}
namespace eval ::common {}

# Sourced at the start of each Corvane session, before the user's scripts: loads the libraries whose commands
# belong to the product. -nointernaltcl leaves them out.

if {![get_param tcl.dontLoadInternalLibraries]} {
    load [file join [omu::get_app_root -appfile lib/libzq_design.so] lib libzq_design.so] Zq_design
    omu::publish
}

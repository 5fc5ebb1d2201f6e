// One of the libraries that the tests of load open. An init function sets the variable loaded to its name, or
// refuses.
#include <tcl.h>

namespace {

[[maybe_unused]] int loaded(Tcl_Interp* interp, const char* by) {
    return Tcl_SetVar2(interp, "loaded", nullptr, by, TCL_GLOBAL_ONLY | TCL_LEAVE_ERR_MSG) ? TCL_OK
                                                                                           : TCL_ERROR;
}

[[maybe_unused]] int refused(Tcl_Interp* interp, const char* by) {
    Tcl_SetObjResult(interp, Tcl_ObjPrintf("%s refuses", by));
    return TCL_ERROR;
}

} // namespace

#define INIT(name, outcome)                                                                                  \
    extern "C" DLLEXPORT int name(Tcl_Interp* interp) {                                                      \
        return outcome(interp, #name);                                                                       \
    }

#ifdef LIBRARY_zq_new
INIT(Zq_new_Init, loaded)
#endif
#ifdef LIBRARY_zq_old
INIT(Omu_old_Init, loaded)
#endif
#ifdef LIBRARY_zq_older
INIT(Omu_older_Init, loaded)
#endif
#ifdef LIBRARY_zq_oldest
INIT(Omu_oldest_Init, loaded)
#endif
#ifdef LIBRARY_zq_both
INIT(Zq_both_Init, loaded)
INIT(Omu_both_Init, loaded)
#endif
#ifdef LIBRARY_zq_refuses
INIT(Zq_refuses_Init, refused)
#endif
#ifdef LIBRARY_zq_old_refuses
INIT(Omu_old_refuses_Init, refused)
#endif
#ifdef LIBRARY_zq_none
INIT(Other_Init, loaded)
#endif
#ifdef LIBRARY_plain
INIT(Plain_Init, loaded)
#endif

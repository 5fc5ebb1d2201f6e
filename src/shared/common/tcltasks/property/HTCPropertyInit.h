#pragma once

#include <tcl.h>

/// Registration of the commands that read, set, report and define properties.
namespace HTCPropertyInit {

struct get_cmds {
    static void init(Tcl_Interp* interp);
    static void uninit();
};
struct set_cmds {
    static void init(Tcl_Interp* interp);
    static void uninit();
};
struct reset_cmds {
    static void init(Tcl_Interp* interp);
    static void uninit();
};
struct report_cmds {
    static void init(Tcl_Interp* interp);
    static void uninit();
};
struct list_cmds {
    static void init(Tcl_Interp* interp);
    static void uninit();
};
struct create_cmds {
    static void init(Tcl_Interp* interp);
    static void uninit();
};
struct delete_cmds {
    static void init(Tcl_Interp* interp);
    static void uninit();
};
struct HTCPListPropertyValue {
    static void init(Tcl_Interp* interp);
    static void uninit();
};
/// With the class "attr_spec", which stays registered.
struct HTCPGetAttrSpecs {
    static void init(Tcl_Interp* interp);
    static void uninit();
};

} // namespace HTCPropertyInit

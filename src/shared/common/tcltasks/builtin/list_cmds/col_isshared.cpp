// omu::col_isshared varName
// How many hold the collection in a variable, if anybody beside the variable and one more does; else 0.
#include "tcltasks/builtin/list_cmds/list_task.h"

using namespace vek::tcltasks;

namespace col_isshared {

class task : public HTCITaskHelper<task, listcmds_tags> {
public:
    static constexpr const char* command = "omu::col_isshared";
    using HTCITaskHelper<task, listcmds_tags>::execute;

    static void load_description() {
        in_categories("Object");
        description_instance("Tell whether the collection in a variable is shared",
                             "number of holders, or 0");
    }
    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }

    int execute(Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) override {
        Tcl_Obj* const value = objc == 2 ? Tcl_ObjGetVar2(interp, objv[1], nullptr, 0) : nullptr;
        const int holders = value ? value->refCount : 0;
        return set_result(interp, std::to_string(holders > 2 ? holders : 0));
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace col_isshared

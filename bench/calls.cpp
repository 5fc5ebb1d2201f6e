// Commands for bench/group_calls.tcl: two tasks, and beside each the same written by hand against Tcl's own
// interface. `load libbench_calls.so Bench_calls` makes them in the namespace bench.

#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace empty_task {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "bench::empty_task";
    static void load_description() { description_instance("Do nothing.", ""); }
    int execute(Tcl_Interp*) override { return TCL_OK; }
};

} // namespace empty_task

namespace copy_task {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "bench::copy_task";

    static void load_description() {
        description_instance("Say how much would be copied.", "a number")
            .add_options()
            .add_option("count", options::number(1), "How many times to copy.")
            .add_option("suffix", options::text(), "What to add to the name.")
            .add_option("force", options::flag(), "Write over what is there.")
            .add_option("from", options::text(), "What to copy.")
            .add_option("to", options::text(), "Where to copy it.");
        positional_instance().add("from", 1).add("to", 1);
    }

    int execute(Tcl_Interp* interp) override {
        const auto length = get_option<std::string>("from").size() + get_option<std::string>("to").size() +
                            get_option<std::string>("suffix").size();
        return set_result(interp, static_cast<int>(length) * get_option<int>("count") +
                                      static_cast<int>(get_option<bool>("force")));
    }
};

} // namespace copy_task

namespace {

int empty_command(ClientData, Tcl_Interp*, int, Tcl_Obj* const*) {
    return TCL_OK;
}

int copy_command(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    static const char* const names[] = {"-count", "-suffix", "-force", nullptr};
    int count = 1, force = 0, positional = 0, length = 0, total = 0;
    for (int i = 1; i < objc; ++i) {
        int index = -1;
        if (*Tcl_GetString(objv[i]) == '-' &&
            Tcl_GetIndexFromObj(interp, objv[i], names, "option", 0, &index) != TCL_OK) {
            return TCL_ERROR;
        }
        if ((index == 0 || index == 1) && ++i == objc) {
            Tcl_SetObjResult(interp, Tcl_ObjPrintf("no value for %s", names[index]));
            return TCL_ERROR;
        }
        if (index == 0) {
            if (Tcl_GetIntFromObj(interp, objv[i], &count) != TCL_OK) {
                return TCL_ERROR;
            }
        } else if (index == 2) {
            force = 1;
        } else {
            positional += index == -1;
            Tcl_GetStringFromObj(objv[i], &length);
            total += length;
        }
    }
    if (positional > 2) {
        Tcl_SetObjResult(interp, Tcl_NewStringObj("too many arguments", -1));
        return TCL_ERROR;
    }
    Tcl_SetObjResult(interp, Tcl_NewIntObj(total * count + force));
    return TCL_OK;
}

} // namespace

extern "C" DLLEXPORT int Bench_calls_Init(Tcl_Interp* interp) {
    register_task<empty_task::task>(interp);
    register_task<copy_task::task>(interp);
    Tcl_CreateObjCommand(interp, "bench::empty_command", empty_command, nullptr, nullptr);
    Tcl_CreateObjCommand(interp, "bench::copy_command", copy_command, nullptr, nullptr);
    return TCL_OK;
}

// omu::delete_slave interp
// Deletes an interpreter that this one made. Fails for any other name.
#include "platform/msg/ComMsgMgr.h"
#include "platform/tcl/HTCTclInterp.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace delete_slave {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::delete_slave";

    static void load_description() {
        in_categories("Tools");
        description_instance("Delete a slave interpreter", "Nothing")
            .add_options()
            .add_option("interp", options::value<std::string>(), "Name of interpreter to delete")
            .required();
        positional_instance().add("interp", 1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        const std::string name = get_option<std::string>("interp");
        Tcl_Interp* slave = Tcl_GetSlave(interp, HTCTclEncoding::toTcl(name).c_str());
        // To Tcl an empty name is the interpreter itself.
        if (!slave || slave == interp) {
            throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-236@%s\n", name});
        }
        HTCTclInterp::deleteSlaveHelper(slave);
        Tcl_ResetResult(interp);
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace delete_slave

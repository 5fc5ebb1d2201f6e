// common::list_param
// The names of all parameters, sorted; hidden ones only in a session with Tcl debugging.
#include "platform/env/HUTEnv.h"
#include "platform/param/HPAParamMgr.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace list_param {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::list_param";

    static void load_description() {
        in_categories("PropertyAndParameter");
        description_instance("Get all parameter names", "list");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        std::vector<HPAParam*> params;
        HPAParamMgr::getParamMgr().findMatchingParams("*", params, true, false);
        std::vector<std::string> names;
        for (const HPAParam* param : params) {
            if (param->visible || HUTEnv::isTclDebug()) {
                names.push_back(param->name);
            }
        }
        return set_result(interp, names);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace list_param

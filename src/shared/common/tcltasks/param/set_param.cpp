// common::set_param NAME VALUE
// Sets a parameter and gives its new value. Fails, and changes nothing, for a value that does not fit.
#include "platform/param/HPAParamHelper.h"
#include "platform/param/HPAParamMgr.h"
#include "platform/param/HTCParamUpdatedEvent.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace set_param {

struct HTCSetParamTag : breaks_undo {};

class task : public HTCITaskHelper<task, HTCSetParamTag> {
public:
    static constexpr const char* command = "common::set_param";

    static void load_description() {
        in_categories("PropertyAndParameter");
        description_instance("Set a parameter value", "newly set parameter value")
            .add_options()
            .add_option("name", options::text(), "Parameter name")
            .required()
            .hint("param")
            .add_option("value", options::text(), "Parameter value")
            .hint("param_value")
            .required();
        positional_instance().add("name", 1).add("value", 1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        const auto name = get_option<std::string>("name");
        HPAParam& param = param_helper::find_param(name);
        param.lifeCycleCheck();
        param_helper::set_value(param, get_option<std::string>("value"));
        HUTGuiEvent::fire<HTCParamUpdatedEvent>(HPAParamMgr::getParamMgr(), name);
        return set_result(interp, param_helper::get_value(param));
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace set_param

// common::get_param NAME
// The value of a parameter. Fails for a name that no parameter has, whatever its case.
#include "platform/param/HPAParamHelper.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace get_param {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::get_param";

    static void load_description() {
        in_categories("PropertyAndParameter");
        description_instance("Get a parameter value", "parameter value")
            .add_options()
            .add_option("name", options::text(), "Parameter name")
            .required()
            .hint("param");
        positional_instance().add("name", 1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        const HPAParam& param = param_helper::find_param(get_option<std::string>("name"));
        param.lifeCycleCheck();
        return set_result(interp, param_helper::get_value(param));
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace get_param

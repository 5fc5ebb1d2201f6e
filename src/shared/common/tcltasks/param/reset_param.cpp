// common::reset_param NAME
// Gives a parameter, named exactly, its default again, and gives that value.
#include <sstream>

#include "platform/param/HPAParamMgr.h"
#include "platform/param/HTCParamUpdatedEvent.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace reset_param {

namespace {

std::string value_of(const HPAParam& param) {
    if (param.type() != HPA_FLOAT) {
        return HPAParamMgr::valueText(param);
    }
    std::ostringstream text;
    text << param.float_value();
    return text.str();
}

} // namespace

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::reset_param";

    static void load_description() {
        in_categories("PropertyAndParameter");
        description_instance("Reset a parameter", "original value")
            .add_options()
            .add_option("name", options::text(), "Parameter name")
            .required()
            .hint("param");
        positional_instance().add("name", 1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        const auto name = get_option<std::string>("name");
        if (name.empty()) {
            throw HTCErrors::invalid_option_value("name", name);
        }
        HPAParamMgr& manager = HPAParamMgr::getParamMgr();
        const HPAParam* const param = manager.findParam(name);
        if (!param) {
            throw HTCErrors::command_failed("Parameter '" + name + "' does not exist");
        }
        manager.reset(name);
        const std::string value = value_of(*param);
        HUTGuiEvent::fire<HTCParamUpdatedEvent>(manager, name);
        return set_result(interp, value);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace reset_param

// omu::match_options TASK ?PREFIX?
// The options of a command that begin with a dash and the prefix, all of them without one, in the order of
// their declaration. Empty for a command that has no declared options.
#include "platform/env/HSTStringUtils.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "platform/tcl/HTCTclUtils.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace match_options {

namespace {

bool is_for_all_commands(const std::string& name) {
    return name == "-help" || name == "-quiet" || name == "-owner";
}

} // namespace

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::match_options";

    static void load_description() {
        in_categories("Internal");
        description_instance("Match string against all options supported by task", "List of matching options")
            .add_options()
            .add_option("task", options::text(), "Name of task to search for mathcing options")
            .hint("command")
            .add_option("match", options::text(),
                        "String to match against options, empty string (default) matches all options");
        positional_instance().add("task", 1).add("match", 1);
    }
    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }

    int execute(Tcl_Interp* interp) override {
        std::string name = HTCTclEncoding::toTcl(get_option<std::string>("task"));
        const std::string pattern = std::string("-").append(get_option<std::string>("match"));
        if (name.starts_with("::")) {
            name.erase(0, 2);
        }
        const auto task = task_manager::createTask(interp, HTCTclUtils::tclNamespaceOrigin(interp, name));
        const auto* described = dynamic_cast<const task_options_base*>(task.get());
        std::vector<std::string> matching;
        if (described) {
            for (std::string& option : HSTStringUtils::split(described->supported_options(), ' ')) {
                const bool fits = pattern == "-" || option.starts_with(pattern);
                if (fits && !option.empty() && !is_for_all_commands(option)) {
                    matching.push_back(std::move(option));
                }
            }
        }
        return set_result(interp, matching);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace match_options

// omu::HistAdd COMMAND ?exec?
// Adds a command to the history and to the journal, and evaluates it if the second word is exec.
#include "platform/tcl/HTCHistory.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "tcltasks/builtin/detail/journal.h"
#include "tcltasks/builtin/history/history_cmds.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace history_cmds::add {

class task : public HTCITaskHelper<task, history_tags> {
public:
    static constexpr const char* command = "omu::HistAdd";

    static void load_description() {
        in_categories("Internal");
        description_instance("Internal command for add entry to the end of the history stack", "")
            .add_options()
            .add_option("command", options::text(), "Add command to history stack")
            .required()
            .add_option("exec", options::text(), "Execute the command");
        positional_instance().add("command", 1).add("exec", 1);
    }
    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }
    bool isComposite() const override { return true; }
    // The command that is run answers for its own messages.
    bool halt_flow_if_error_msg_detected() const override { return false; }

    int execute(Tcl_Interp* interp) override {
        const auto text = get_option<std::string>("command");
        HTCHistory::Mgr::instance().add(text);
        HTCBuiltin::detail::journal_command(interp, text);
        if (get_option<std::string>("exec") != "exec") {
            return set_result(interp, "");
        }
        const tclobj_ref script(HTCTclEncoding::tclNewStringObj(text));
        return Tcl_EvalObjEx(interp, script.get(), TCL_EVAL_DIRECT);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace history_cmds::add

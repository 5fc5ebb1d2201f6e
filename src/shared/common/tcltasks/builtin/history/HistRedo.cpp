// omu::HistRedo ?N?
// Evaluates an event of the history again, the one before the newest unless another is named.
#include "platform/tcl/HTCHistory.h"
#include "platform/tcl/HTCTclEncoding.h"
#include "tcltasks/builtin/detail/journal.h"
#include "tcltasks/builtin/history/history_cmds.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace history_cmds::redo {

class task : public HTCITaskHelper<task, history_tags> {
public:
    static constexpr const char* command = "omu::HistRedo";

    static void load_description() {
        in_categories("Internal");
        description_instance("Internal command for redoing an event on the history stack", "")
            .add_options()
            .add_option("event", options::number(-1), "The event to redo");
        positional_instance().add("event", 1);
    }
    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }
    bool isComposite() const override { return true; }
    // The command that is run answers for its own messages.
    bool halt_flow_if_error_msg_detected() const override { return false; }

    int execute(Tcl_Interp* interp) override {
        auto& history = HTCHistory::Mgr::instance();
        const std::string text = history.event(get_option<int>("event"));
        // The newest event is the command that asks for this.
        history.change(text, history.nextid() - 1);
        HTCBuiltin::detail::journal_changed_event(interp, 0, text);
        const tclobj_ref script(HTCTclEncoding::tclNewStringObj(text));
        return Tcl_EvalObjEx(interp, script.get(), TCL_EVAL_GLOBAL | TCL_EVAL_DIRECT);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace history_cmds::redo

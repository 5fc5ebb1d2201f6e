// omu::echo cmd
// Shows and logs the text of a command as if it had been traced. Inside a sourced file the trace does that
// already, except for a command that has a translation.
#include "platform/msg/ComMsgMgr.h"
#include "platform/param/HPAParamMgr.h"
#include "tcltasks/builtin/detail/tracer.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;
using HTCBuiltin::detail::tracer;

namespace echo {

namespace {

struct echo_tags {};

// Without blanks and tabs at the ends, and without one pair of braces around it.
std::string stripped(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos) {
        return {};
    }
    std::string command = text.substr(first, text.find_last_not_of(" \t") - first + 1);
    if (command.size() >= 2 && command.front() == '{' && command.back() == '}') {
        command = command.substr(1, command.size() - 2);
    }
    return command;
}

} // namespace

class task : public itask_helper<task, echo_tags> {
public:
    class factory : public HTCIFactoryHelper<task> {};

    static constexpr const char* command = "omu::echo";

    static void load_description() {
        in_categories("Tools");
        description_instance("Add tracing of commands", "")
            .add_options()
            .add_option("cmd", options::text(), "cmd");
        positional_instance().add("cmd", 1);
    }
    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }

    int execute(Tcl_Interp*) override {
        if (tracer().isSourcing && !tracer().writeCmdText) {
            return TCL_OK;
        }
        const int indent = tracer().indentLevel;
        const std::string text =
            HTCBuiltin::detail::format_command(indent, stripped(get_option<std::string>("cmd")));
        ComMsgMgr::MsgMask mask = ComMsgMgr::MSGTYPE_SESSION_COMMAND;
        if (indent > 0) {
            const bool journal = HPAParamMgr::getParamMgr().getValueAsBool("tcl.showTranslatedCmdsInJournal");
            mask = journal ? 0xb01000 : ComMsgMgr::MSGTYPE_TRACED_COMMAND;
        }
        ComMsgMgr::sendMsgString("common", mask, text);
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace echo

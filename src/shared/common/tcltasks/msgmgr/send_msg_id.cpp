// common::send_msg_id ?-continue? ID SEVERITY MSG
// Sends a message with an id and a text of the script's. A bad severity or id fails with a reason as the
// result.
#include <algorithm>
#include <charconv>
#include <optional>

#include "platform/tcl/tcl_text_view.h"
#include "tcltasks/core/task.h"
#include "tcltasks/msgmgr/HTCMsgmgr.h"
#include "tcltasks/msgmgr/detail/TclStack.h"

using namespace vek::tcltasks;

namespace send_msg_id {

namespace {

struct message_id {
    std::string_view prefix;
    int number;
};

/// "Common 17-1" is the prefix "Common 17" and the number 1; an id that ends in "-?" is a placeholder.
std::optional<message_id> parse_id(std::string_view id) {
    if (const std::size_t unknown = id.find("-?"); unknown != id.npos && unknown + 2 == id.size()) {
        return message_id{"#UNDEF", 0};
    }
    const std::size_t dash = id.rfind('-');
    if (dash == id.npos) {
        return std::nullopt;
    }
    std::string_view digits = id.substr(dash + 1);
    if (digits.starts_with('+')) {
        digits.remove_prefix(1);
    }
    int number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size() || number < 0) {
        return std::nullopt;
    }
    return message_id{id.substr(0, dash), number};
}

} // namespace

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::send_msg_id";

    static void load_description() {
        in_categories("Message");
        description_instance("Send message by id", "")
            .add_options()
            .add_option(
                "continue", options::flag(),
                "Continue the execution of the current tcl script (if any) in cases where severity is "
                "ERROR. Default behavior is to terminate the currently executing script on ERROR.")
            .add_option("id", options::text(""),
                        "Unique message prefix and id to be sent e.g. 'Common 17-1'.")
            .add_option("severity", options::value<std::string>(),
                        "Message severity to send, e.g. \"ALL\", \"ERROR\" or \"CRITICAL WARNING\"")
            .hint("severity")
            .add_option("msg", options::value<std::string>(),
                        "Complete formated message text in double quotes");
        positional_instance().add("id", 1).add("severity", 1).add("msg", 1);
    }
    std::string owner() const override { return "common"; }
    bool halt_flow_if_error_msg_detected() const override { return !m_continue; }

    /// Scripts send very many messages in the plain form, which needs no parsing.
    int execute(Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) override {
        const auto is_switch = [](Tcl_Obj* word) { return *Tcl_GetString(word) == '-'; };
        if (objc != 4 || std::any_of(objv + 1, objv + objc, is_switch)) {
            return HTCITaskHelper::execute(interp, objc, objv);
        }
        const tcl_text_view id(objv[1]), severity(objv[2]), text(objv[3]);
        return run(interp, id.get(), std::string(severity.get()), text.get());
    }

    int execute(Tcl_Interp* interp) override {
        m_continue = get_option<bool>("continue");
        return run(interp, get_option<std::string>("id"), get_option<std::string>("severity"),
                   get_option<std::string>("msg"));
    }

private:
    int run(Tcl_Interp* interp, std::string_view id, const std::string& severity, std::string_view text) {
        const ComMsgMgr::MsgMask mask = HTCMsgmgr::msgString2Type(severity);
        if (mask == 0) {
            set_result(interp, "invalid msg severity " + severity);
            return TCL_ERROR;
        }
        try {
            send(interp, id, mask, text);
            return TCL_OK;
        } catch (const std::exception&) {
            return refuse_id(interp);
        }
    }

    void send(Tcl_Interp* interp, std::string_view id, ComMsgMgr::MsgMask mask, std::string_view text) {
        const bool errorBefore = ComMsgMgr::hasIssuedError();
        const std::optional<message_id> parts = parse_id(id);
        if (!parts) {
            throw HTCErrors::command_failed("could not find message id. " + std::string(id));
        }
        if (!text.empty()) {
            ComMsgMgr::sendMsgById(parts->prefix, parts->number, mask, text);
            HTCMsgmgr::showTclStack(interp, mask);
        }
        if (!errorBefore) {
            ComMsgMgr::clearIssuedError();
        }
    }

    int refuse_id(Tcl_Interp* interp) {
        set_result(interp, "invalid msg id: a dash is required between the system alias and numeric id: e.g. "
                           "\"alias-100\"");
        return TCL_ERROR;
    }

    bool m_continue = false;
};

extern const task_entry entry = entry_of<task>;

} // namespace send_msg_id

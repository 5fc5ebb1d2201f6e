// common::send_gid_msg ?-listvalid? ?-continue? -id N -ssname NAME -severity WORD ?-description D?
// ?-resolution R? MSG Sends a message of a registered source. Refusals are silent, but for a session with Tcl
// debugging.
#include <map>

#include "platform/env/HUTEnv.h"
#include "platform/env/HUTTextTable.h"
#include "platform/msg/ComMsgMgrTclIface.h"
#include "tcltasks/core/task.h"
#include "tcltasks/msgmgr/HTCMsgmgr.h"
#include "tcltasks/msgmgr/detail/TclStack.h"

using namespace vek::tcltasks;

namespace send_gid_msg {

namespace {

struct RegisteredSS {
    std::string engineer;
    std::string manager;
    std::string prefix;
    std::string description;
};

/// The sources by name.
const std::map<std::string, RegisteredSS>& registered_sources() {
    static const auto& sources = *new std::map<std::string, RegisteredSS>{
        {"BD", {"board", "common", "103", "General KDI"}},
        {"BoardInterface", {"board", "common", "100", "Used by by Board Infra scripts"}},
        {"BoardRule", {"board", "common", "102", "Used by KDI tcl."}},
        {"ComMsgMgrTest", {"common", "common", "199", "Regression test scripts that test this code"}},
        {"MsgMgrTest", {"common", "common", "199", "Regression test scripts that test this code"}},
        {"NLK_TCL", {"netlist", "common", "101", "Used by NLK generated tcl scripts"}},
    };
    return sources;
}

/// No message of this command counts toward the errors of the session.
class KeptErrorCount {
public:
    KeptErrorCount() : m_count(ComMsgMgrTclIface::getLifetimeErrorCount()) {}
    ~KeptErrorCount() { ComMsgMgrTclIface::setLifetimeErrorCount(m_count); }
    KeptErrorCount(const KeptErrorCount&) = delete;
    KeptErrorCount& operator=(const KeptErrorCount&) = delete;

private:
    const unsigned m_count;
};

/// Tells the author of a script, not its user, what is wrong with a call.
template <class... Args>
int refuse(com_msg_mgr::Key<std::type_identity_t<Args>...> key, const Args&... args) {
    if (HUTEnv::isTclDebug()) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_ERROR, key, args...);
    }
    return TCL_ERROR;
}

} // namespace

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::send_gid_msg";

    static void load_description() {
        in_categories("Message");
        description_instance(
            "Send a fully formatted message with unique GID. Id, ssname, severity and msg options are "
            "mandatory.\n\n"
            "A new ssname is requested from the owners of the messages. It is a name of at most 12 "
            "characters, "
            "made of lower and upper case letters, digits and the underscore, and may end in \"::\", as "
            "'board::' does. After the first \"::\" of the ssname given to this command everything is "
            "treated "
            "as a wildcard. A request names an engineering owner and that owner's manager, and gives a "
            "one-line "
            "description of the Tcl files that will use the name.\n\n"
            "The parameter messaging.showTclStack shows the Tcl stack behind messages: 4 for all messages, 1 "
            "for ERROR only, 2 for ERROR and CRITICAL WARNING, 3 for these and WARNING. An abbreviated "
            "command "
            "(such as send_gid) upsets the stack and produces Tcl errors when the command runs; the value 5 "
            "then leaves the source file information out.",
            "")
            .add_options()
            .add_option("listvalid", options::flag(), "list valid ssname's, owners, and GID prefix.")
            .add_option(
                "continue", options::flag(),
                "Continue the execution of the current tcl script (if any) in cases where severity is "
                "ERROR. Default behavior is to terminate the currently executing script on ERROR.")
            .add_option(
                "id", options::value<int>(),
                "An integer identifier >= 1, caller must insure that it is unique for the given value of "
                "ssname. Required.")
            .add_option(
                "ssname", options::value<std::string>(),
                "A string identifier of the general source of the message, for example 'board_infra'. An "
                "identifier must be approved beforehand; messages using unapproved identifiers are not "
                "output. Required.")
            .add_option(
                "severity", options::value<std::string>(),
                "Message severity to send, e.g. \"INFO\",\"WARNING\", \"ERROR\" or \"CRITICAL WARNING\"")
            .hint("severity")
            .add_option(
                "description", options::text(""),
                "Optional message description. It is recommended to start with the source file and line "
                "number of the message, in the form 'apply_board_connection.tcl:123 This message "
                "indicates that given interface is not correctly defined.'")
            .add_option("resolution", options::text(""),
                        "Optional message resolution. Should describe to the customer possible steps for "
                        "resolving the problem.")
            .add_option("msg", options::value<std::string>(), "Complete formated message text. Required.");
        positional_instance().add("msg", 1);
    }
    std::string owner() const override { return "common"; }
    bool halt_flow_if_error_msg_detected() const override { return !m_continue; }

    int execute(Tcl_Interp* interp) override {
        m_continue = get_option<bool>("continue");
        const int id = get_option<int>("id");
        const auto severity = get_option<std::string>("severity");
        const auto ssname = get_option<std::string>("ssname");
        const auto description = get_option<std::string>("description");
        const auto resolution = get_option<std::string>("resolution");
        if (get_option<bool>("listvalid") && HUTEnv::isTclDebug()) {
            list_sources();
            return TCL_OK;
        }
        const KeptErrorCount keptCount;
        if (id < 1) {
            return refuse("@17-1992@");
        }
        if (severity.empty() || ssname.empty()) {
            return refuse("@17-1941@");
        }
        const auto source = registered_sources().find(ssname.substr(0, ssname.find("::")));
        if (source == registered_sources().end()) {
            return refuse("@17-1942@%s", ssname);
        }
        const ComMsgMgr::MsgMask mask = HTCMsgmgr::msgString2Type(severity);
        if (mask == 0) {
            return refuse("@17-1993@%s", severity);
        }
        ComMsgMgr::sendFormattedMsg(__FILE__, __LINE__, ssname, mask,
                                    source->second.prefix + '-' + std::to_string(id),
                                    get_option<std::string>("msg"), description, resolution);
        HTCMsgmgr::showTclStack(interp, mask);
        return TCL_OK;
    }

private:
    static void list_sources() {
        HUTTextTable table(0);
        table.setHeaders(
            {"Registered SSName", "GID Prefix", "Engineering Owner", "Manager Owner", "Description"});
        for (const auto& [name, source] : registered_sources()) {
            table.addRow({name, source.prefix, source.engineer, source.manager, source.description});
        }
        ComMsgMgr::sendMsgString("common", ComMsgMgr::MSGTYPE_OUTPUT, table.getAsString());
    }

    bool m_continue = false;
};

extern const task_entry entry = entry_of<task>;

} // namespace send_gid_msg

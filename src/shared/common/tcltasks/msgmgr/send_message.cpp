// debug::send_message -severity WORD -msg TEXT ?options?
// Sends a message that uses what a message can have: arguments that speak of objects, description, modes.
#include <charconv>

#include "platform/env/HSTStringUtils.h"
#include "tcltasks/core/task.h"
#include "tcltasks/msgmgr/HTCMsgmgr.h"

using namespace vek::tcltasks;

namespace send_message {

namespace {

/// An argument of the message, "value|meta type|meta value|meta context".
struct argument {
    std::string value;
    ComMsgMgr::MetaType type = ComMsgMgr::MetaType::none;
    std::string metaValue;
    std::string context;
};

/// Empty fields do not count; the last of very many fields is the context. False if there is no field.
bool parseArg(const std::string& text, argument& out) {
    std::vector<std::string> fields;
    for (std::string& field : HSTStringUtils::split(text, '|')) {
        if (!field.empty()) {
            fields.push_back(std::move(field));
        }
    }
    if (fields.size() > 0) {
        out.value = fields[0];
    }
    if (fields.size() > 1) {
        out.type = ComMsgMgr::metaStr2Type(fields[1]);
    }
    if (fields.size() > 2) {
        out.metaValue = fields[2];
    }
    if (fields.size() > 3) {
        out.context = fields.back();
    }
    return !fields.empty();
}

int refuse(com_msg_mgr::Key<> key) {
    ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_ERROR, key);
    return TCL_ERROR;
}

} // namespace

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "debug::send_message";

    static void load_description() {
        in_categories("Message");
        const auto text = [] { return options::value<std::string>()->default_value("", "empty"); };
        description_instance("Send message", "")
            .add_options()
            .add_option("severity", options::value<std::string>(),
                        "Message severity to send, e.g. \"ALL\", \"ERROR\" or \"CRITICAL WARNING\"")
            .hint("severity")
            .add_option("sarg0", text(),
                        "Variable string argument for the first format placeholder. Format is "
                        "'arg_value|meta_type|meta_value|meta_context'.")
            .add_option("sarg1", text(),
                        "Variable string argument for the second format placeholder. Format is "
                        "'arg_value|meta_type|meta_value|meta_context'.")
            .add_option("id", options::value<int>()->default_value(-1, "none"),
                        "Id of message, an int value. If -gid is specified, -id can not be used.")
            .add_option(
                "displayinmode", options::text("default"),
                "The MsgMgr operating modes in which the message should be displayed. Should be one of "
                "'default', 'ooc', or 'all'. Only valid if -desc or -res is also specified.")
            .hint("default|ooc|all")
            .add_option(
                "gid", text(),
                "GID of message, should be in alpha-int (e.g. ADRC-123) or int-int (e.g. 12-345) format. "
                "If specifed, -id can not be used.")
            .add_option(
                "ssn", text(),
                "Name of subsystem issuing the message. If used, then either -id or -gid must also be "
                "specified.")
            .add_option(
                "desc", text(),
                "Message description. May optonally contain a single format placeholder. Currently only "
                "the !%1! format placeholder is supported. If placeholder is present in text, -darg0 "
                "should also be specified.")
            .add_option(
                "res", text(),
                "Message resolution. May optonally contain a single format placeholder. Currently only "
                "the !%1! format placeholder is supported. If placeholder is present in text, -rarg0 "
                "should also be specified.")
            .add_option(
                "msg", options::value<std::string>(),
                "Message text. May optonally contain one or two format placeholders. Currently only the "
                "%s format placeholder is supported. If a single %s is present in msg, -sarg0 should "
                "also be specified; if two %s are present in msg, both -sarg0 and -sarg1 must be "
                "specified.");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        m_text = get_option<std::string>("msg") + '\n';
        const auto severity = get_option<std::string>("severity");
        const auto sarg0 = get_option<std::string>("sarg0");
        const auto sarg1 = get_option<std::string>("sarg1");
        const auto description = get_option<std::string>("desc");
        const auto resolution = get_option<std::string>("res");
        const auto subsystem = get_option<std::string>("ssn");
        m_mask = HTCMsgmgr::msgString2Type(severity);
        if (m_mask == 0) {
            set_result(interp, "invalid message severity");
            return TCL_ERROR;
        }
        if (sarg0.empty() && description.empty() && resolution.empty() && subsystem.empty()) {
            ComMsgMgr::sendMsgString("common", m_mask, m_text);
            return set_result(interp, "Sent msg severity " + severity);
        }
        parseArg(sarg0, m_arguments[0]);
        parseArg(sarg1, m_arguments[1]);
        ComMsgMgrInstance message = ComMsgMgrInstance::createInstance("common", m_mask, m_text, values());
        if (!subsystem.empty()) {
            if (const int code = name_message(subsystem, message)) {
                return code;
            }
        }
        complete(message, description, resolution);
        ComMsgMgr::sendMessage(message);
        return TCL_OK;
    }

private:
    std::vector<std::string> values() const { return {m_arguments[0].value, m_arguments[1].value}; }

    /// Replaces the message by one with an id.
    int name_message(const std::string& subsystem, ComMsgMgrInstance& message) {
        const int id = get_option<int>("id");
        const auto gid = get_option<std::string>("gid");
        if (id >= 0 && !gid.empty()) {
            return refuse("@17-1262@");
        }
        if (id < 0 && gid.empty()) {
            return refuse("@17-1263@");
        }
        if (id >= 0) {
            message = ComMsgMgrInstance(subsystem, id, false, m_mask, m_text, values());
            return TCL_OK;
        }
        const std::vector<std::string> parts = HSTStringUtils::split(gid, '-');
        if (parts.size() != 2) {
            return refuse("@17-1261@");
        }
        unsigned number = 0;
        const char* const end = parts[1].data() + parts[1].size();
        const auto [stop, error] = std::from_chars(parts[1].data(), end, number);
        if (error != std::errc() || stop != end) {
            return refuse("@17-1260@");
        }
        message = ComMsgMgrInstance(subsystem, m_mask, {parts[0], number}, m_text, values());
        return TCL_OK;
    }

    void complete(ComMsgMgrInstance& message, const std::string& description, const std::string& resolution) {
        for (std::size_t i = 0; i < std::size(m_arguments); ++i) {
            const argument& given = m_arguments[i];
            if (given.type != ComMsgMgr::MetaType::none) {
                message.attachMetaType(i, given.type, given.metaValue, given.context);
            }
        }
        if (!description.empty()) {
            message.setDescription(description);
        }
        if (!resolution.empty()) {
            message.setResolution(resolution);
        }
        const auto mode = get_option<std::string>("displayinmode");
        if (mode == "ooc") {
            message.setDisplayInModes(ComMsgMgr::MODE_OOC);
        } else if (mode == "default") {
            message.setDisplayInModes(ComMsgMgr::MODE_DEFAULT);
        } else if (mode == "all") {
            message.setDisplayInModes(ComMsgMgr::MODE_ALL);
        }
    }

    std::string m_text;
    ComMsgMgr::MsgMask m_mask = 0;
    argument m_arguments[2];
};

extern const task_entry entry = entry_of<task>;

} // namespace send_message

// debug::get_messages_from_log ?-severity WORD?
// The lines of the session's log that are messages of the severity, or of any of the four most usual ones.
#include <boost/regex.hpp>
#include <fstream>

#include "platform/env/HUTLogFileMgr.h"
#include "tcltasks/core/task.h"
#include "tcltasks/msgmgr/HTCMsgmgr.h"

using namespace vek::tcltasks;

namespace get_messages_from_log {

namespace {

constexpr ComMsgMgr::MsgMask searchable = 0x7C000000;

} // namespace

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "debug::get_messages_from_log";

    static void load_description() {
        in_categories("Message");
        description_instance(
            "Returns a tcl list of strings containing all messages of the given severity that "
            "have been output by corvane.",
            "list of messages")
            .add_options()
            .add_option(
                "severity", options::text(""),
                "The message severity to match. Should be one of: error, critical warning, warning, or "
                "info. If not specified, will default to returning all of these message types.")
            .hint("severity");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        std::string pattern = "^ERROR:|^WARNING:|^CRITICAL WARNING:|^INFO:";
        int status = TCL_OK;
        if (const auto word = get_given<std::string>("severity")) {
            const ComMsgMgr::MsgMask mask = HTCMsgmgr::msgString2Type(*word);
            if (mask & searchable) {
                pattern = '^' + std::string(ComMsgMgr::msgType2Str(mask));
            } else {
                ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_ERROR, "@17-683@%s", *word);
                status = TCL_ERROR;
            }
        }
        HUTLogFileMgr::flush();
        std::ifstream log(HUTLogFileMgr::getLogFullName(), std::ios::binary);
        if (!log) {
            status = TCL_ERROR;
        }
        const boost::regex wanted(pattern);
        std::vector<std::string> lines;
        for (std::string line; std::getline(log, line);) {
            if (boost::regex_search(line, wanted)) {
                lines.push_back(line);
            }
        }
        set_result(interp, lines);
        return status;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace get_messages_from_log

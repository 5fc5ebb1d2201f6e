// debug::get_messages ?-severity WORD? ?-file FILE? ?-show_msg WORD?
// The number of messages of a severity in the session, or in a message database, which later calls without
// -file look at as well. With -show_msg yes they are shown instead.
#include <optional>

#include "platform/env/HUTFile.h"
#include "tcltasks/core/task.h"
#include "tcltasks/msgmgr/HTCMsgmgr.h"

using namespace vek::tcltasks;

namespace get_messages {

namespace {

using message_list = std::vector<std::shared_ptr<const ComMsgMgrInstance>>;

/// The source that the last call looked at.
ComMsgMgrSrcHandle& last_source() {
    static ComMsgMgrSrcHandle& source = *new ComMsgMgrSrcHandle(ComMsgMgr::getRootMsgSrcHandle());
    return source;
}

} // namespace

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "debug::get_messages";

    static void load_description() {
        in_categories("Message");
        description_instance("Get messages", "")
            .add_options()
            .add_option("severity", options::text("ALL"),
                        "Message severity to query, e.g. \"ALL\", \"ERROR\" or \"CRITICAL WARNING\"")
            .hint("severity")
            .add_option("file", options::text(""),
                        "The message source file name, or CURRENT for the current default message source.")
            .hint("file")
            .add_option("show_msg", options::text("no"), "Show msg on console, e.g. show_msg yes");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        const ComMsgMgr::MsgMask mask = HTCMsgmgr::msgString2Type(get_option<std::string>("severity"));
        const auto show = get_option<std::string>("show_msg");
        ComMsgMgrSrcHandle& source = last_source();
        if (const auto file = get_given<std::string>("file")) {
            if (*file != "CURRENT" && !HUTFile::exists(*file)) {
                set_result(interp, "failed to open source file.");
                return TCL_ERROR;
            }
            source =
                *file == "CURRENT" ? ComMsgMgr::getCurrentMsgSrcHandle() : ComMsgMgr::loadMsgSrc(*file, "");
        }
        if (show.starts_with('y') || show.starts_with('Y')) {
            show_messages(source, mask);
            return TCL_OK;
        }
        long count = 0;
        ComMsgMgr::forEachMessage(source, mask, [&count](const auto&) { ++count; });
        return set_result(interp, count);
    }

private:
    static void show_messages(const ComMsgMgrSrcHandle& source, ComMsgMgr::MsgMask mask) {
        message_list messages;
        ComMsgMgr::getMessages(messages, source, mask);
        ComMsgMgr::writeToConsole(std::to_string(messages.size()) + " messages \n");
        for (const auto& message : messages) {
            ComMsgMgr::writeToConsole(message->getMessage());
        }
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace get_messages

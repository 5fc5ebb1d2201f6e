// common::load_msg_db FILE
// Makes a message database the current source of messages and shows what is in it.
#include "platform/msg/ComMsgMgr.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace load_msg_db {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::load_msg_db";

    static void load_description() {
        in_categories("Message");
        description_instance("Load Message Db file", "")
            .add_options()
            .add_option("file", options::value<std::string>(), "Message file to be loaded")
            .hint("file")
            .required();
        positional_instance().add("file", 1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp*) override {
        const auto file = get_option<std::string>("file");
        if (!ComMsgMgr::isMsgDb(file)) {
            ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_ERROR, "@17-1541@%s", file);
            return TCL_ERROR;
        }
        const ComMsgMgrSrcHandle source = ComMsgMgr::loadMsgSrc(file, "load_msg_db");
        ComMsgMgr::setCurrentMsgSrcHandle(source);
        ComMsgMgr::writeToConsole("Dump of messages found in msg db:\n");
        ComMsgMgr::forEachMessage(source, ComMsgMgr::MSGTYPE_ANY, [](const auto& message) {
            ComMsgMgr::writeToConsole("Message content:" + message->getMessage());
        });
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace load_msg_db

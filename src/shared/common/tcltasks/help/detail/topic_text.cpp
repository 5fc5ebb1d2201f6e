#include "tcltasks/help/detail/topic_text.h"

#include <system_error>

#include "platform/env/HUTFile.h"
#include "platform/msg/ComMsgMgr.h"
#include "tcltasks/help/detail/features.h"

namespace HTCHelp::detail {

std::string page_text(const std::string& path) {
    try {
        std::string text = HUTFile::read(path);
        if (!text.empty() && text.back() != '\n') {
            text += '\n';
        }
        return text;
    } catch (const std::system_error& failure) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-5441@%s%s\n", path,
                           failure.code().message());
        return {};
    }
}

std::string topic_text(Tcl_Interp* interp, const HelpInfo& topic, const std::string& form) {
    switch (topic.type) {
    case HelpInfo::task_topic:
        return topic.task->task_help(interp, form);
    case HelpInfo::auto_loaded:
        return "The command '" + topic.name +
               "' is auto loaded by Tcl. To explicitly load the command type '" +
               features::getLoadCommandForCommand(interp, topic.name) + "'.";
    default:
        return page_text(topic.path);
    }
}

} // namespace HTCHelp::detail

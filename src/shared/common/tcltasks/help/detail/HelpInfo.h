#pragma once

#include <memory>
#include <string>

#include "tcltasks/core/itask.h"

namespace HTCHelp::detail {

/// One topic of help.
struct HelpInfo {
    enum TopicType {
        task_topic = 0,
        auto_loaded = 1, ///< a command that Tcl loads from a feature when it is first called
        man_page = 2,    ///< a manual page of any kind; as a request: all pages
        tcl_builtin = 3, ///< a manual page of one of Tcl's commands
        tcl_package = 4, ///< a manual page of one of Tcl's packages
    };

    std::string name;     ///< the command or page as it was found
    std::string helpName; ///< the name under which users ask for it
    std::string path;     ///< the file of a manual page
    TopicType type = task_topic;
    std::shared_ptr<vek::tcltasks::itask> task; ///< of a task_topic
};

} // namespace HTCHelp::detail

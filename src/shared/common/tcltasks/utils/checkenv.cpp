// omu::checkenv ?-tandrel? ?-mycorvane?
// Warns of the install variables that are not set as they should be. Never fails.
#include "platform/env/HSTStringUtils.h"
#include "platform/env/HUTEnv.h"
#include "platform/env/HUTPathUtils.h"
#include "platform/msg/ComMsgMgr.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace checkenv {

namespace {

void checkEnvDirList(const std::string& variable) {
    for (const std::string& entry : HSTStringUtils::split(HUTEnv::getEnv(variable, ""), ':')) {
        if (!entry.empty() && !HUTPathUtils::isDirectory(entry)) {
            ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-1271@%s%s", variable, entry);
        }
    }
}

} // namespace

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::checkenv";

    static void load_description() {
        in_categories("Report");
        description_instance("Fetch the location of the data files.", "")
            .add_options()
            .add_option("tandrel", options::flag(), "Run time check proper TANDREL setting.")
            .add_option("mycorvane", options::flag(), "Run time check proper MYCORVANE setting.");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp*) override {
        if (get_option<bool>("tandrel")) {
            if (!HUTEnv::getEnv("TANDREL")) {
                ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-204@\n");
            }
            checkEnvDirList("TANDREL");
        }
        if (get_option<bool>("mycorvane")) {
            checkEnvDirList("MYCORVANE");
        }
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace checkenv

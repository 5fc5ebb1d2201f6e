// debug::validate_msg_files ?FILES?
// Reads message files, those of the installation without an argument, and shows each fault in them. The
// result lists the files that do not exist.
#include <algorithm>

#include "platform/env/HUTEnv.h"
#include "platform/env/HUTFile.h"
#include "platform/env/HUTPathUtils.h"
#include "platform/msg/ComMsgMgrFile.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace validate_msg_files {

namespace {

/// The files in a directory, in order of name.
std::vector<std::string> files_in(const std::string& directory) {
    std::vector<std::string> paths;
    for (const HUTFile& file : HUTFile(directory).createFileIter()) {
        if (file.isFile()) {
            paths.push_back(file.getPath());
        }
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

} // namespace

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "debug::validate_msg_files";

    static void load_description() {
        in_categories("Message");
        description_instance("Parse .msg file and report any errors found.", "list of errors")
            .add_options()
            .add_option("files", options::list(), "Message file paths.")
            .hint("file");
        positional_instance().add("files", -1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        auto paths = get_option<std::vector<std::string>>("files");
        std::erase(paths, "");
        std::vector<std::string> errors;
        if (paths.empty()) {
            const std::string directory =
                HUTEnv::getOMUDataDir("msg") + std::string(HUTFile::getDirSeparator()) + "msg";
            if (HUTPathUtils::isDirectory(directory)) {
                paths = files_in(directory);
            } else {
                errors.push_back("ERROR : OMU_DATADIR \"" + directory + "\" does not exist.");
            }
        }
        for (const std::string& path : paths) {
            if (HUTPathUtils::extension(path) != ".msg") {
                continue;
            }
            if (HUTFile::exists(path)) {
                ComMsgMgrFile("", path).parse();
            } else {
                errors.push_back("ERROR : File \"" + path + "\" does not exist.");
            }
        }
        set_result(interp, errors);
        return errors.empty() ? TCL_OK : TCL_ERROR;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace validate_msg_files

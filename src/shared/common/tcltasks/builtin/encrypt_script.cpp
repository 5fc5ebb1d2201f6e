// debug::encrypt_script ?-key FILE? ?-force? from to
// Writes a script in encrypted form, which source evaluates, and gives its name. Fails when the new file
// exists, unless -force is given, and when there is no key.
#include "platform/env/HUTFile.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/xp/script_key.h"
#include "platform/xp/xp.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;
namespace xp = isl::iostreams::xp;

namespace encrypt_script {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "debug::encrypt_script";

    static void load_description() {
        in_categories("Tools");
        description_instance("Write a script in encrypted form", "name of the encrypted file")
            .add_options()
            .add_option("key", options::text(),
                        "Key file; by default the one that encrypted scripts are read with")
            .hint("file")
            .add_option("force", options::flag(), "Replace the encrypted file if it exists")
            .add_option("from", options::value<std::string>(), "Script to encrypt")
            .hint("file")
            .required()
            .add_option("to", options::value<std::string>(), "Name of the encrypted file")
            .hint("file")
            .required();
        positional_instance().add("from", 1).add("to", 1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        const std::string from = get_option<std::string>("from");
        const std::string to = get_option<std::string>("to");
        std::string key = get_option<std::string>("key");
        if (key.empty()) {
            key = xp::key_file();
        }
        if (key.empty()) {
            throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-5412@\n"});
        }
        if (!get_option<bool>("force") && HUTFile::exists(to)) {
            throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-5407@%s\n", to});
        }
        xp::encrypt(from, to, key);
        return set_result(interp, to);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace encrypt_script

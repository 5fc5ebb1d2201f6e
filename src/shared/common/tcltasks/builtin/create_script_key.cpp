// debug::create_script_key file
// Makes a file with a fresh key for encrypted scripts, which only its owner can read, and gives its name.
// Fails when the file exists.
#include "platform/xp/script_key.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace create_script_key {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "debug::create_script_key";

    static void load_description() {
        in_categories("Tools");
        description_instance("Make a key file for encrypted scripts", "name of the file")
            .add_options()
            .add_option("file", options::value<std::string>(),
                        "Name of the key file, which must not exist yet")
            .hint("file")
            .required();
        positional_instance().add("file", 1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        const std::string file = get_option<std::string>("file");
        isl::iostreams::xp::create_key_file(file);
        return set_result(interp, file);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace create_script_key

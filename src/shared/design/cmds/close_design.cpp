// design::close_design ?name?
// Closes a design, by default the current one. Objects of it that a script still holds can no longer be used.
#include "design/cmds/objects.h"

using namespace vek::tcltasks;

namespace design::cmds::close_design {

class task : public HTCITaskHelper<task, breaks_undo> {
public:
    static constexpr const char* command = "design::close_design";

    static void load_description() {
        in_categories("Object");
        description_instance("Close a design", "")
            .add_options()
            .add_option("name", options::value<std::string>(), "The design to close.",
                        HTCTclTaskOptions::DefaultValueDescription("the current design"));
        positional_instance().add("name", 1);
    }
    std::string owner() const override { return "design"; }

    int execute() override {
        design::Database& database = design::Database::instance();
        const auto name = get_given<std::string>("name");
        database.close(name ? database.require(*name) : database.require_current());
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace design::cmds::close_design

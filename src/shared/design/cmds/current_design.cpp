// current_design ?name?
// The current design, after making the one of that name current. Fails if there is none.
#include "design/cmds/objects.h"

using namespace vek::tcltasks;

namespace design::cmds::current_design {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "current_design";

    static void load_description() {
        in_categories("Object");
        description_instance("Get or set the current design", "design")
            .add_options()
            .add_option("name", options::value<std::string>(), "The design to make current.");
        positional_instance().add("name", 1);
    }
    std::string owner() const override { return "design"; }

    int execute(Tcl_Interp* interp) override {
        design::Database& database = design::Database::instance();
        if (const auto name = get_given<std::string>("name"))
            database.set_current(database.require(*name));
        return set_result(interp, &database.require_current());
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace design::cmds::current_design

// get_designs ?-regexp? ?-nocase? ?-filter expr? ?-of_objects objs? ?patterns?
// The open designs whose names match, in the order of reading. -hierarchical is taken and means nothing here.
#include "design/cmds/object_query.h"

using namespace vek::tcltasks;

namespace design::cmds::get_designs {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "get_designs";

    static void load_description() {
        in_categories("Object");
        design::add_query_options(description_instance("Get a list of designs", "list of designs"),
                                  "designs");
        positional_instance().add("patterns", -1);
    }
    std::string owner() const override { return "design"; }

    int execute(Tcl_Interp* interp) override {
        std::vector<std::string> unmatched;
        const auto objects = get_given<design::ObjectList>("of_objects");
        auto designs = design::find_designs(objects ? design::designs_of(objects->objects)
                                                    : design::Database::instance().designs(),
                                            design::query_of(*this), &unmatched);
        design::warn_unmatched(command, unmatched);
        return set_result(interp, design::collection_of(std::move(designs)));
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace design::cmds::get_designs

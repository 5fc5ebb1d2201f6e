// omu::col2list -list COLLECTION
// All elements of a collection as a plain list. Code 9998 for another value.
#include "tcltasks/builtin/list_cmds/list_task.h"

using namespace vek::tcltasks;

namespace col2list {

class task : public list_task<task> {
public:
    static constexpr const char* command = "omu::col2list";
    static constexpr bool only_collections = true;

    static void load_description() {
        in_categories("Object");
        description_instance("Convert a collection to a tcl list", "list")
            .add_options()
            .add_option("list", options::value<any_collection>(), "collection");
        positional_instance().add("list", 1);
    }

    int work(Tcl_Interp* interp, detail::collection_wrapper_base& list) override {
        return set_result(interp, list.get_collection_as_tcllist());
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace col2list

// omu::col_copy -list COLLECTION
// A collection of the same elements that changes on its own. Code 9998 for another value.
#include "tcltasks/builtin/list_cmds/list_task.h"

using namespace vek::tcltasks;

namespace col_copy {

class task : public list_task<task> {
public:
    static constexpr const char* command = "omu::col_copy";
    static constexpr bool only_collections = true;

    static void load_description() {
        in_categories("Object");
        description_instance("Copy a collection", "new collection")
            .add_options()
            .add_option("list", options::value<any_collection>(), "collection");
    }

    int work(Tcl_Interp* interp, detail::collection_wrapper_base& list) override {
        return give(interp, list.clone());
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace col_copy

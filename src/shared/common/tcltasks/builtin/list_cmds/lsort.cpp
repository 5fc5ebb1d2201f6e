// omu::col_lsort -unique COLLECTION
// A collection of the elements in the order of their names, each once. Code 9999 without -unique.
#include "tcltasks/builtin/list_cmds/list_task.h"

using namespace vek::tcltasks;

namespace lsort {

class task : public list_task<task> {
public:
    static constexpr const char* command = "omu::col_lsort";

    static void load_description() {
        in_categories("Object");
        description_instance("Sort the elements in a collection", "collection")
            .add_options()
            .add_option("list", options::value<any_collection>(), "collection to sort")
            .add_option("unique", options::flag(), "remove redundant elements");
        positional_instance().add("list", 1);
    }

    int work(Tcl_Interp* interp, detail::collection_wrapper_base& list) override {
        if (!get_option<bool>("unique")) {
            return nothing_done;
        }
        const any_collection copy(list.clone());
        copy->unique();
        copy->sort();
        return set_result(interp, copy);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace lsort

// omu::col_lreverse -list COLLECTION
// A collection of the elements in the opposite order. Code 9998 for another value.
#include "tcltasks/builtin/list_cmds/list_task.h"

using namespace vek::tcltasks;

namespace lreverse {

class task : public list_task<task> {
public:
    static constexpr const char* command = "omu::col_lreverse";
    static constexpr bool only_collections = true;

    static void load_description() {
        in_categories("Object");
        description_instance("Reverse the order of the elements in a collection", "new list")
            .add_options()
            .add_option("list", options::value<any_collection>(), "collection");
        positional_instance().add("list", 1);
    }

    int work(Tcl_Interp* interp, detail::collection_wrapper_base& list) override {
        const any_collection copy(list.clone());
        copy->reverse();
        return set_result(interp, copy);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace lreverse

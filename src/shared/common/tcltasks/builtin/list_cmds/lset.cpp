// omu::col_lset COLLECTION index newvalue
// Changes one element of the collection itself, for all who hold it. Fails if the index is out of range.
#include "tcltasks/builtin/list_cmds/list_task.h"

using namespace vek::tcltasks;

namespace lset {

class task : public list_task<task> {
public:
    static constexpr const char* command = "omu::col_lset";

    static void load_description() {
        in_categories("Object");
        description_instance("Set the elements in a collection", "list")
            .add_options()
            .add_option("list", options::value<any_collection>(), "collection to change")
            .add_option("index", options::text(), "the index to change")
            .add_option("newvalue", options::value<Tcl_Obj*>(), "element to set")
            .required();
        positional_instance().add("list", 1).add("index", 1).add("newvalue", 1);
    }

    int work(Tcl_Interp* interp, detail::collection_wrapper_base& list) override {
        const int end = last_of(list);
        const int index = HTCBuiltinUtils::parseIndex(get_option<std::string>("index"), end);
        if (index < 0 || index > end) {
            throw HTCErrors::command_failed("list index is out of range");
        }
        list.set_tclobj_at_index(interp, get_option<Tcl_Obj*>("newvalue"), static_cast<unsigned long>(index));
        return give(interp, &list);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace lset

// omu::col_lreplace COLLECTION first last ?value ...?
// A collection with the values in place of the elements first to last. Fails if there is no element first.
#include <algorithm>
#include <span>
#include <stdexcept>

#include "tcltasks/builtin/list_cmds/list_task.h"

using namespace vek::tcltasks;

namespace lreplace {

namespace {

void insert(Tcl_Interp* interp, detail::collection_wrapper_base& target, Tcl_Obj* value,
            unsigned long index) {
    if (index < target.size()) {
        target.insert_tclobj_at_index(interp, value, index);
    } else {
        target.append_tclobj(interp, value);
    }
}

// Puts the values in place of `count` elements from `index` on.
void replace(Tcl_Interp* interp, detail::collection_wrapper_base& target, unsigned long index,
             unsigned long count, std::span<Tcl_Obj* const> values) {
    count = std::min(count, target.size() - std::min(index, target.size()));
    for (Tcl_Obj* value : values) {
        if (count > 0) {
            target.set_tclobj_at_index(interp, value, index);
            --count;
        } else {
            insert(interp, target, value, index);
        }
        ++index;
    }
    for (; count > 0; --count) {
        target.remove_element_at_index(index);
    }
}

} // namespace

class task : public list_task<task> {
public:
    static constexpr const char* command = "omu::col_lreplace";

    static void load_description() {
        describe_range().add_option("value", options::value<std::vector<Tcl_Obj*>>(),
                                    "elements to replace with");
        positional_instance().add("value", -1);
    }

    int work(Tcl_Interp* interp, detail::collection_wrapper_base& list) override {
        const auto firstText = get_option<std::string>("first");
        const auto lastText = get_option<std::string>("last");
        if (firstText.empty() || lastText.empty()) {
            return refuse_empty(interp, firstText.empty() ? "first" : "last");
        }
        list.clear_collection_context();
        const int end = last_of(list);
        int first = HTCBuiltinUtils::parseIndex(firstText, end);
        const int last = HTCBuiltinUtils::parseIndex(lastText, end);
        if (end >= 0 && first > end) {
            throw std::invalid_argument("collection doesn't contain element " + firstText);
        }
        first = std::max(first, 0);
        const long long count = std::max(static_cast<long long>(last) - first + 1, 0LL);
        const any_collection copy(list.clone());
        const auto values = get_option<std::vector<Tcl_Obj*>>("value");
        replace(interp, *copy, static_cast<unsigned long>(first), static_cast<unsigned long>(count), values);
        return set_result(interp, copy);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace lreplace

// omu::col_lrange COLLECTION first last
// A collection of the elements first to last; an empty value if there are none. Indices as in lindex.
#include <algorithm>

#include "tcltasks/builtin/list_cmds/list_task.h"

using namespace vek::tcltasks;

namespace lrange {

class task : public list_task<task> {
public:
    static constexpr const char* command = "omu::col_lrange";

    static void load_description() { describe_range(); }

    int work(Tcl_Interp* interp, detail::collection_wrapper_base& list) override {
        const auto firstText = get_option<std::string>("first");
        const auto lastText = get_option<std::string>("last");
        if (firstText.empty() || lastText.empty()) {
            return refuse_empty(interp, firstText.empty() ? "first" : "last");
        }
        const int end = last_of(list);
        const int first = std::max(HTCBuiltinUtils::parseIndex(firstText, end), 0);
        const int last = std::min(HTCBuiltinUtils::parseIndex(lastText, end), end);
        if (first > last) {
            return set_result(interp, "");
        }
        return give(interp, list.clone(static_cast<unsigned long>(first),
                                       static_cast<unsigned long>(last - first) + 1));
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace lrange

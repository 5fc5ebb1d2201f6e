// get_nets ?-hierarchical? ?-regexp? ?-nocase? ?-filter expr? ?-of_objects objs? ?patterns?
// The nets, one for each bit, that the patterns name in the current design.
#include "design/cmds/object_query.h"

using namespace vek::tcltasks;

namespace design::cmds::get_nets {

class task : public design::object_query<task, design::Net> {
public:
    static constexpr const char* command = "get_nets";
    static constexpr const char* plural = "nets";
};

extern const task_entry entry = entry_of<task>;

} // namespace design::cmds::get_nets

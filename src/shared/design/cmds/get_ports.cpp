// get_ports ?-hierarchical? ?-regexp? ?-nocase? ?-filter expr? ?-of_objects objs? ?patterns?
// The ports of the design, one for each bit, that the patterns name in the current design.
#include "design/cmds/object_query.h"

using namespace vek::tcltasks;

namespace design::cmds::get_ports {

class task : public design::object_query<task, design::Port> {
public:
    static constexpr const char* command = "get_ports";
    static constexpr const char* plural = "ports";
};

extern const task_entry entry = entry_of<task>;

} // namespace design::cmds::get_ports

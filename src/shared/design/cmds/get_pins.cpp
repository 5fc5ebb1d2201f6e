// get_pins ?-hierarchical? ?-regexp? ?-nocase? ?-filter expr? ?-of_objects objs? ?patterns?
// The pins of cells, one for each bit, that the patterns name in the current design.
#include "design/cmds/object_query.h"

using namespace vek::tcltasks;

namespace design::cmds::get_pins {

class task : public design::object_query<task, design::Pin> {
public:
    static constexpr const char* command = "get_pins";
    static constexpr const char* plural = "pins";
};

extern const task_entry entry = entry_of<task>;

} // namespace design::cmds::get_pins

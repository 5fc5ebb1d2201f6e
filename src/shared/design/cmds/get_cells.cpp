// get_cells ?-hierarchical? ?-regexp? ?-nocase? ?-filter expr? ?-of_objects objs? ?patterns?
// The cells, that is instances of modules and library cells, that the patterns name in the current design.
#include "design/cmds/object_query.h"

using namespace vek::tcltasks;

namespace design::cmds::get_cells {

class task : public design::object_query<task, design::Cell> {
public:
    static constexpr const char* command = "get_cells";
    static constexpr const char* plural = "cells";
};

extern const task_entry entry = entry_of<task>;

} // namespace design::cmds::get_cells

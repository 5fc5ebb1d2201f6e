#include "design/Zq_design.h"

#include "design/cmds/objects.h"
#include "design/cmds/property_classes.h"
#include "platform/tcl/tcl_guard.h"

using vek::tcltasks::task_entry;

namespace design::cmds {

namespace read_netlist {
extern const task_entry entry;
}
namespace write_netlist {
extern const task_entry entry;
}
namespace current_design {
extern const task_entry entry;
}
namespace get_designs {
extern const task_entry entry;
}
namespace get_cells {
extern const task_entry entry;
}
namespace get_nets {
extern const task_entry entry;
}
namespace get_pins {
extern const task_entry entry;
}
namespace get_ports {
extern const task_entry entry;
}
namespace filter {
extern const task_entry entry;
}
namespace close_design {
extern const task_entry entry;
}

namespace {

const task_entry* const all[] = {
    &read_netlist::entry, &write_netlist::entry, &current_design::entry, &get_designs::entry,
    &get_cells::entry,    &get_nets::entry,      &get_pins::entry,       &get_ports::entry,
    &filter::entry,       &close_design::entry,
};

} // namespace

} // namespace design::cmds

int Zq_design_Init(Tcl_Interp* interp) {
    return vek::tcltasks::tcl_guard(interp, [&] {
        design::Database& database = design::Database::instance();
        design::register_property_classes();
        database.on_open(design::register_attributes_of);
        database.on_close(design::forget_values_of);
        vek::tcltasks::add_tasks(design::cmds::all, interp);
        return TCL_OK;
    });
}

#include "tcltasks/property/HTCPropertyInit.h"

#include "tcltasks/core/task.h"
#include "tcltasks/property/HTCGetAttrSpecProperties.h"

using vek::tcltasks::task_entry;

namespace get_property {
extern const task_entry entry;
}
namespace set_property {
extern const task_entry entry;
}
namespace omu_set_property {
extern const task_entry entry;
}
namespace add_properties {
extern const task_entry entry;
}
namespace set_attribute {
extern const task_entry entry;
}
namespace reset_property {
extern const task_entry entry;
}
namespace report_property {
extern const task_entry entry;
}
namespace list_property {
extern const task_entry entry;
}
namespace list_class {
extern const task_entry entry;
}
namespace create_property {
extern const task_entry entry;
}
namespace delete_property {
extern const task_entry entry;
}
namespace list_property_value {
extern const task_entry entry;
}
namespace get_attr_specs {
extern const task_entry entry;
}

namespace HTCPropertyInit {

namespace {

const task_entry* const get_tasks[] = {&get_property::entry};
const task_entry* const set_tasks[] = {&set_property::entry, &omu_set_property::entry, &add_properties::entry,
                                       &set_attribute::entry};
const task_entry* const reset_tasks[] = {&reset_property::entry};
const task_entry* const report_tasks[] = {&report_property::entry};
const task_entry* const list_tasks[] = {&list_property::entry, &list_class::entry};
const task_entry* const create_tasks[] = {&create_property::entry};
const task_entry* const delete_tasks[] = {&delete_property::entry};
const task_entry* const list_property_value_tasks[] = {&list_property_value::entry};
const task_entry* const get_attr_specs_tasks[] = {&get_attr_specs::entry};

} // namespace

void get_cmds::init(Tcl_Interp* interp) {
    add_tasks(get_tasks, interp);
}

void get_cmds::uninit() {
    remove_tasks(get_tasks);
}

void set_cmds::init(Tcl_Interp* interp) {
    add_tasks(set_tasks, interp);
}

void set_cmds::uninit() {
    remove_tasks(set_tasks);
}

void reset_cmds::init(Tcl_Interp* interp) {
    add_tasks(reset_tasks, interp);
}

void reset_cmds::uninit() {
    remove_tasks(reset_tasks);
}

void report_cmds::init(Tcl_Interp* interp) {
    add_tasks(report_tasks, interp);
}

void report_cmds::uninit() {
    remove_tasks(report_tasks);
}

void list_cmds::init(Tcl_Interp* interp) {
    add_tasks(list_tasks, interp);
}

void list_cmds::uninit() {
    remove_tasks(list_tasks);
}

void create_cmds::init(Tcl_Interp* interp) {
    add_tasks(create_tasks, interp);
}

void create_cmds::uninit() {
    remove_tasks(create_tasks);
}

void delete_cmds::init(Tcl_Interp* interp) {
    add_tasks(delete_tasks, interp);
}

void delete_cmds::uninit() {
    remove_tasks(delete_tasks);
}

void HTCPListPropertyValue::init(Tcl_Interp* interp) {
    add_tasks(list_property_value_tasks, interp);
}

void HTCPListPropertyValue::uninit() {
    remove_tasks(list_property_value_tasks);
}

void HTCPGetAttrSpecs::init(Tcl_Interp* interp) {
    HTCGetAttrSpecProperties::init();
    add_tasks(get_attr_specs_tasks, interp);
}

void HTCPGetAttrSpecs::uninit() {
    remove_tasks(get_attr_specs_tasks);
}

} // namespace HTCPropertyInit

#include "tcltasks/utils/HTCUtilsInit.h"

#include "platform/env/HSTStringUtils.h"
#include "platform/taskcore/value_hints.h"
#include "tcltasks/core/task.h"
#include "tcltasks/utils/detail/Features.h"

using vek::tcltasks::task_entry;

namespace get_data_dir {
extern const task_entry entry;
}
namespace get_app_root {
extern const task_entry entry;
}
namespace get_app_data {
extern const task_entry entry;
}
namespace get_app_data_release {
extern const task_entry entry;
}
namespace is_regress {
extern const task_entry entry;
}
namespace get_log_filename {
extern const task_entry entry;
}
namespace get_journal_filename {
extern const task_entry entry;
}
namespace get_product_name {
extern const task_entry entry;
}
namespace checkenv {
extern const task_entry entry;
}
namespace load_features {
extern const task_entry entry;
}
namespace list_features {
extern const task_entry entry;
}
namespace current_features {
extern const task_entry entry;
}
namespace hide_features {
extern const task_entry entry;
}
namespace unregister_task {
extern const task_entry entry;
}

namespace HTCUtilsInit {

namespace {

const task_entry* const utils[] = {
    &get_data_dir::entry,         &get_app_root::entry,     &get_app_data::entry,
    &get_app_data_release::entry, &is_regress::entry,       &get_log_filename::entry,
    &get_journal_filename::entry, &get_product_name::entry,
};

const task_entry* const check_env[] = {
    &checkenv::entry,
};

const task_entry* const load_feature[] = {
    &load_features::entry,
    &list_features::entry,
    &current_features::entry,
    &hide_features::entry,
};

std::vector<std::string> features_to_load(Tcl_Interp* interp,
                                          const vek::tcltasks::value_hints::given_options&) {
    Features::init(interp);
    return HSTStringUtils::split(Features::getAll(interp, true), ' ');
}

const task_entry* const register_task_cmds[] = {
    &unregister_task::entry,
};

} // namespace

void HTCUtils::init(Tcl_Interp* interp) {
    add_tasks(utils, interp);
}

void HTCUtils::uninit() {
    remove_tasks(utils);
}

void HTCCheckEnv::init(Tcl_Interp* interp) {
    add_tasks(check_env, interp);
}

void HTCCheckEnv::uninit() {
    remove_tasks(check_env);
}

void HTCLoadFeature::init(Tcl_Interp* interp) {
    add_tasks(load_feature, interp);
    vek::tcltasks::value_hints::add("feature", features_to_load);
}

void HTCLoadFeature::uninit() {
    remove_tasks(load_feature);
}

void HTCRegisterTask::init(Tcl_Interp* interp) {
    add_tasks(register_task_cmds, interp);
}

void HTCRegisterTask::uninit() {
    remove_tasks(register_task_cmds);
}

} // namespace HTCUtilsInit

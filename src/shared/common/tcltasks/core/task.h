#pragma once

/// All that a command's source needs: derive `task` from HTCITaskHelper, declare options in load_description,
/// work in execute, and register with register_task. CONTRIBUTING walks through a real one.
#include "platform/taskcore/task_manager.h"
#include "tcltasks/core/HTCIFactoryHelper.h"
#include "tcltasks/core/HTCITaskHelper.h"
#include "tcltasks/core/tcl_collection.h"
#include "tcltasks/core/tcl_value_semantic.h"

namespace vek::tcltasks {

/// Registers a factory of type F.
template <class F>
void init_tcltask(Tcl_Interp* interp) {
    task_manager::registerFactory(interp, std::make_shared<F>());
}

/// Registers a task in an interpreter and declares its options unless another interpreter has done so.
template <class T>
void register_task(Tcl_Interp* interp) {
    init_tcltask<typename T::factory>(interp);
    if (!taskmgr::isTaskDescriptionLoaded(T::command)) {
        T::load_description();
    }
}

/// Takes a task out of all interpreters.
template <class T>
void unregister_task() {
    task_manager::unregisterFactory(T::command);
}

/// How the registration source of an area reaches a task without a header: the command's source ends in
/// `extern const task_entry entry = entry_of<task>;`, the registration source declares it and lists it.
struct task_entry {
    void (*add)(Tcl_Interp*);
    void (*remove)();
};

template <class T>
inline constexpr task_entry entry_of{register_task<T>, unregister_task<T>};

/// Registers, or takes out, the tasks of a unit in the order of its list.
template <class Entries>
void add_tasks(const Entries& entries, Tcl_Interp* interp) {
    for (const task_entry* entry : entries) {
        entry->add(interp);
    }
}
template <class Entries>
void remove_tasks(const Entries& entries) {
    for (const task_entry* entry : entries) {
        entry->remove();
    }
}

} // namespace vek::tcltasks

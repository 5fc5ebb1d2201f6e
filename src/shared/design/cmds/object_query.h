#pragma once

#include "design/Query.h"
#include "design/cmds/objects.h"
#include "platform/msg/ComMsgMgr.h"

namespace design {

/// Declares what get_cells and its sisters have in common; `plural` is what they give.
void add_query_options(vek::tcltasks::options_description& options, const char* plural);

/// What the options of a call say. A pattern is one word: a collection stands for the names of its elements,
/// a list for its elements.
Query query_of(const vek::tcltasks::task_options_base& options);

/// Warns of each pattern that matched nothing.
void warn_unmatched(const char* command, const std::vector<std::string>& patterns);

/// The common part of the commands that find objects. The command names itself and its objects:
///
///     class task : public object_query<task, Cell> {
///     public:
///         static constexpr const char* command = "get_cells";
///         static constexpr const char* plural = "cells";
///     };
template <class Task, class T>
class object_query : public vek::tcltasks::HTCITaskHelper<Task> {
public:
    static void load_description() {
        Task::in_categories("Object");
        add_query_options(Task::description_instance(std::string("Get a list of ") + Task::plural,
                                                     std::string("list of ") + Task::plural),
                          Task::plural);
        Task::positional_instance().add("patterns", -1);
    }
    std::string owner() const override { return "design"; }

    int execute(Tcl_Interp* interp) override {
        const Query query = query_of(*this);
        std::vector<std::string> unmatched;
        const auto objects = this->template get_given<ObjectList>("of_objects");
        std::vector<T*> found =
            objects ? related_objects<T>(objects->objects, query, &unmatched)
                    : find_objects<T>(Database::instance().require_current(), query, &unmatched);
        warn_unmatched(Task::command, unmatched);
        return this->set_result(interp, collection_of(std::move(found)));
    }
};

} // namespace design

#pragma once

#include <vector>

#include "platform/taskcore/option_messages.h"
#include "tcltasks/builtin/HTCBuiltinUtils.h"
#include "tcltasks/core/task.h"

/// Marks the tasks that derive and change collections.
struct listcmds_tags {};

namespace vek::tcltasks {

using any_collection = tcl_collection<detail::untyped_collection>;

/// The codes by which these tasks hand a call on to Tcl's own command: the value is no collection; the task
/// has done nothing, or an exception ended it, whose reason is then the result.
constexpr int not_a_collection = 9998;
constexpr int nothing_done = 9999;

/// The base of the tasks on a collection, their option "list". `T` does its work in `work(interp, list)`.
template <class T>
class list_task : public HTCITaskHelper<T, listcmds_tags> {
public:
    using HTCITaskHelper<T, listcmds_tags>::execute;

    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }

    int execute(Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) override {
        if constexpr (requires { T::only_collections; }) {
            if (objc < 3 || !detail::get_collection(objv[2])) {
                return not_a_collection;
            }
        }
        if (const int code = this->parse_options(interp, objc, objv)) {
            return code;
        }
        if (this->answered()) {
            return TCL_OK;
        }
        const auto list = this->template get_option<any_collection>("list");
        if (!list.has_body()) {
            return not_a_collection;
        }
        try {
            return work(interp, *list);
        } catch (const std::exception& failure) {
            fail_with(interp, option_messages::failed(called_as(objv[0]), failure.what()));
        } catch (...) {
        }
        return nothing_done;
    }

    virtual int work(Tcl_Interp* interp, detail::collection_wrapper_base& list) = 0;

protected:
    /// Declares a command on a part of a collection.
    static options_description::adder describe_range() {
        T::in_categories("Object");
        T::positional_instance().add("list", 1).add("first", 1).add("last", 1);
        return T::description_instance("Return one or more adjacent elements from a collection",
                                       "new collection consisting of elements first through last, inclusive")
            .add_options()
            .add_option("list", options::value<any_collection>(), "collection")
            .add_option("first", options::text(), "first index")
            .add_option("last", options::text(), "last index");
    }

    /// Makes the collection of this body the result.
    int give(Tcl_Interp* interp, detail::collection_wrapper_base* body) {
        return this->set_result(interp, any_collection(body));
    }

    /// The last index of a collection; -1 for an empty one.
    static int last_of(const detail::collection_wrapper_base& list) {
        return static_cast<int>(list.size()) - 1;
    }

    /// Refuses a call whose option is empty. Returns the code.
    int refuse_empty(Tcl_Interp* interp, const char* option) {
        return fail_with(interp, option_messages::failed(T::command, std::string("'") + option +
                                                                         "' is not an index but empty"));
    }
};

} // namespace vek::tcltasks

#pragma once

#include <optional>
#include <string>
#include <tuple>
#include <type_traits>

#include "platform/msg/ComMsgMgr.h"
#include "tcltasks/core/task.h"

namespace HTCMsgmgr {

/// An argument of a manager_command, given in its place or by name.
template <class T>
struct argument {
    using value_type = T;

    const char* name;
    const char* help;
    std::optional<T> byDefault = std::nullopt; ///< without one a call must give the argument
    const char* shownDefault = "";             ///< what help shows of it
};

/// A command that hands its arguments to one operation of the message manager and answers with what that
/// gives: true or false, a number, a text, or nothing. The task class says the rest:
///
///     class task : public HTCMsgmgr::manager_command<task> {
///     public:
///         static constexpr const char* command = "debug::set_visibility";
///         static constexpr const char* description = "Set visibility for TRACE messages\n";
///         static auto arguments() { return std::tuple(HTCMsgmgr::argument<int>{"level", "..."}); }
///         static constexpr auto operation = ComMsgMgr::setVisibility;
///     };
///
/// `arguments` may be left out, and `returns` may say what the answer is.
template <class T>
class manager_command : public vek::tcltasks::HTCITaskHelper<T> {
public:
    static void load_description() {
        manager_command::in_categories("Message");
        const char* answer = "";
        if constexpr (requires { T::returns; }) {
            answer = T::returns;
        }
        auto options = T::description_instance(T::description, answer).add_options();
        const auto declare = [&options](const auto& argument) {
            using value = typename std::decay_t<decltype(argument)>::value_type;
            auto* semantic = vek::tcltasks::options::value<value>();
            if (argument.byDefault) {
                semantic->default_value(*argument.byDefault, argument.shownDefault);
            }
            options.add_option(argument.name, semantic, argument.help);
            if (!argument.byDefault) {
                options.required();
            }
            T::positional_instance().add(argument.name, 1);
        };
        std::apply([&](const auto&... argument) { (declare(argument), ...); }, all_arguments());
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        return std::apply(
            [&](const auto&... argument) {
                const auto call = [&] {
                    return T::operation(
                        this->template get_option<typename std::decay_t<decltype(argument)>::value_type>(
                            argument.name)...);
                };
                using answer = decltype(call());
                if constexpr (std::is_void_v<answer>) {
                    call();
                    return TCL_OK;
                } else if constexpr (std::is_same_v<answer, bool>) {
                    return this->set_result(interp, call() ? "true" : "false");
                } else {
                    return this->set_result(interp, call());
                }
            },
            all_arguments());
    }

private:
    static auto all_arguments() {
        if constexpr (requires { T::arguments(); }) {
            return T::arguments();
        } else {
            return std::tuple();
        }
    }
};

} // namespace HTCMsgmgr

#pragma once

#include "platform/taskcore/task_options_base.h"

namespace vek::tcltasks {

/// The options of one task class: the values of this call, and the declarations that all objects of `T`
/// share. Declarations are built once by `T::load_description()` and live until the process ends.
template <class T>
class task_options : public task_options_base {
public:
    const options_description& get_options_description() const override {
        return description_instance(options_description::undeclared, "");
    }
    const positional_options_description& get_positional_options() const override {
        return positional_instance();
    }
    std::string categories() const override { return categories_instance(); }
    std::string task_help_name(const std::string& name) const override { return name; }
    std::string owner() const override { return task_options_base::owner(); }

    /// Declares the task: its one-line description and the words for its result. Declaring twice is an error
    /// of the program and reported as such.
    static options_description& description_instance(const std::string& description,
                                                     const std::string& returns) {
        static options_description& instance = *new options_description(description, returns);
        if (description != options_description::undeclared) {
            if (initialised()) {
                errorDoubleInit(T::command);
            } else {
                instance.declare(T::command, description, returns);
                initialised() = true;
            }
        }
        return instance;
    }

    static positional_options_description& positional_instance() {
        static positional_options_description& instance = *new positional_options_description;
        return instance;
    }

    static std::string& categories_instance() {
        static std::string& instance = *new std::string;
        return instance;
    }

protected:
    /// Adds the command to help categories.
    template <class... Names>
    static void in_categories(const Names&... names) {
        (detail::categories_init(categories_instance())(names), ...);
    }

private:
    static bool& initialised() {
        static bool flag = false;
        return flag;
    }
};

} // namespace vek::tcltasks

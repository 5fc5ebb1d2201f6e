#pragma once

#include <stdexcept>
#include <string>

/// Exceptions of the task core. A task may throw any of them out of execute(); task_manager turns each into
/// TCL_ERROR with a message that names the command.
namespace HTCErrors {

/// The base: a failure in words.
class error : public std::runtime_error {
public:
    explicit error(const std::string& what) : std::runtime_error(what) {}
};

/// An operation failed; the words are the task's own.
class command_failed : public error {
public:
    using error::error;
};

/// A value that an option does not take. The switch stands without its dash.
class invalid_option_value : public error {
public:
    explicit invalid_option_value(const std::string& switchName)
        : error("invalid value for option '" + switchName + "'"), m_switch(switchName) {}
    invalid_option_value(const std::string& switchName, const std::string& value)
        : error("invalid value '" + value + "' for option '" + switchName + "'"), m_switch(switchName),
          m_value(value) {}

    const std::string& switch_name() const { return m_switch; }
    const std::string& value() const { return m_value; }

private:
    std::string m_switch;
    std::string m_value;
};

/// An option that stands more than once in a call. The switch stands without its dash.
class multiple_occurrences : public error {
public:
    explicit multiple_occurrences(const std::string& switchName)
        : error("option '" + switchName + "' is given more than once"), m_switch(switchName) {}

    const std::string& switch_name() const { return m_switch; }

private:
    std::string m_switch;
};

/// A value has no conversion to the type asked for.
class type_error : public error {
public:
    type_error() : error("the value is of another type") {}
};

/// An index at or beyond the end of a collection.
class index_out_of_range : public error {
public:
    explicit index_out_of_range(int index)
        : error("index " + std::to_string(index) + " is out of range"), m_index(index) {}

    int index() const { return m_index; }

private:
    int m_index;
};

/// Elements of one type were to be appended to a collection of another type.
class append_typed_collection : public error {
public:
    append_typed_collection() : error("a collection takes only elements of its own type") {}
};

/// Something was to be appended to a collection without a type.
class append_untyped_collection : public error {
public:
    append_untyped_collection() : error("a collection of unknown type cannot be appended to") {}
};

/// A conversion or comparison that the type does not have.
class not_implemented : public error {
public:
    not_implemented() : error("not implemented") {}
};

} // namespace HTCErrors

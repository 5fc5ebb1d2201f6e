#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

/// What a parameter's value is. A linked parameter is a bool that drives others.
enum HPAType { HPA_BOOL = 0, HPA_INT = 1, HPA_FLOAT = 2, HPA_STRING = 3, HPA_LINKED = 4 };

/// "Bool", "Int", "Float", "String" or "Linked".
std::string_view HPATypeToString(HPAType type);

/// A parameter: a named, typed value that tunes the tool. Made and owned by HPAParamMgr, never destroyed
/// while the process lives: a pointer to one is a handle that code may keep.
///
/// Reading a value is one atomic read (a short lock for text) and safe on any thread; so is setting it. A
/// reader for a type that the parameter does not have gives the nearest sense: a number as bool is "not
/// zero", a text as number is 0, anything as text is its text form. The setters store what they are given;
/// ranges are the business of HPAParamMgr's setters.
class HPAParam {
public:
    enum State { active = 0, deprecated = 1, obsolete = 2 };
    using LinkedMap = std::map<std::string, bool>;

    virtual ~HPAParam() = default;
    virtual HPAType type() const = 0;
    virtual bool has_range() const = 0;
    virtual int int_min() const = 0;
    virtual int int_max() const = 0;
    virtual float float_min() const = 0;
    virtual float float_max() const = 0;
    virtual bool bool_value() const = 0;
    virtual int int_value() const = 0;
    virtual float float_value() const = 0;
    virtual std::string string_value() const = 0;
    virtual bool bool_default() const = 0;
    virtual int int_default() const = 0;
    virtual float float_default() const = 0;
    virtual std::string string_default() const = 0;
    virtual void set_bool(bool value) = 0;
    virtual void set_int(int value) = 0;
    virtual void set_float(float value) = 0;
    virtual void set_string(const std::string& value) = 0;
    virtual void reset_to_default() = 0;
    /// Names of linked parameters; true: they follow this one, false: they take its inverse.
    virtual LinkedMap::const_iterator linked_begin() const = 0;
    virtual LinkedMap::const_iterator linked_end() const = 0;
    /// True after a setter, false after reset_to_default().
    virtual bool is_set() const = 0;
    /// The texts that a text parameter takes, empty for any.
    virtual const std::vector<std::string>& values() const = 0;

    /// Sends a WARNING if the parameter is deprecated or obsolete.
    void lifeCycleCheck() const;

    std::string name;
    std::string description;
    int visible = 1; ///< 0: hidden
    int state = active;
};

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/param/HPAParam.h"

/// The tool's parameters. They are declared in data/param/*.param under the application roots, read at the
/// first getParamMgr(). All operations are safe on any thread; the set of parameters never changes.
///
///     static HPAParam* const limit =
///     HPAParamMgr::getParamMgr().findParam("tcl.collectionResultDisplayLimit"); if (limit->int_value() >= 0)
///     ...
class HPAParamMgr {
public:
    /// The one manager. Throws HEXError if no parameter file is installed (naming the places searched) or one
    /// has a fault (naming file, line and column).
    static HPAParamMgr& getParamMgr();

    /// A manager of its own over the parameter files of these application roots, for tests. Throws as above.
    explicit HPAParamMgr(const std::vector<std::string>& roots);
    ~HPAParamMgr();
    HPAParamMgr(const HPAParamMgr&) = delete;
    HPAParamMgr& operator=(const HPAParamMgr&) = delete;

    /// The parameter of exactly this name, null if there is none. Keep the pointer where speed matters.
    HPAParam* findParam(std::string_view name) const;
    HPAParam* find(std::string_view name) const { return findParam(name); }
    /// The same, ignoring case.
    HPAParam* findParamNoCase(std::string_view name) const;
    /// Adds to `out` the parameters whose names match a glob pattern (*, ?, [...]), in order of name; hidden
    /// ones only with includeHidden, unchanged ones not with onlyNonDefault.
    void findMatchingParams(std::string_view pattern, std::vector<HPAParam*>& out, bool includeHidden,
                            bool onlyNonDefault) const;
    /// All parameters, in order of name.
    const std::vector<HPAParam*>& params() const;

    /// A value by name. Throw HEXError for an unknown name.
    bool getValueAsBool(std::string_view name) const;
    int getValueAsInt(std::string_view name) const;
    double getValueAsDouble(std::string_view name) const;
    std::string getValueAsString(std::string_view name) const;
    /// The value, false if there is no such parameter.
    bool getValueIfExistAsBool(std::string_view name) const;

    /// Set a value by name. Throw HEXError for an unknown name, a value outside the range or the list of
    /// values, or a parameter of another type; nothing is changed then. A linked parameter takes those with
    /// it that it drives, in order of name; if one of them does not exist, HEXError is thrown when its turn
    /// comes, and what was set before stays set.
    void setBoolValue(std::string_view name, bool value);
    void setIntValue(std::string_view name, int value);
    void setFloatValue(std::string_view name, double value);
    void setStringValue(std::string_view name, const std::string& value);
    /// Sets a value from its text form: a bool is yes, true, no, false (case does not matter), 1 or 0. A text
    /// parameter takes any text: its list of values is what the tool knows of, not a bar to the user.
    void setValue(std::string_view name, std::string_view text);
    void setValue(HPAParam& param, std::string_view text);
    /// Back to the default, with the linked parameters. Throws HEXError for an unknown name.
    void reset(std::string_view name);
    /// Whether the value was set and not reset since.
    bool isSet(std::string_view name) const;
    /// The text form of a parameter's value: "1" or "0" for a bool.
    static std::string valueText(const HPAParam& param);
    static std::string defaultText(const HPAParam& param);

    /// Calls a function after each change made through this manager, on the thread that made it, outside of
    /// all locks. Returns a number for removeListener(), after which no new call begins.
    std::uint64_t addListener(std::function<void(HPAParam&)> listener);
    void removeListener(std::uint64_t id);

private:
    struct Impl;
    HPAParamMgr();
    HPAParam& require(std::string_view name) const;
    void setBool(HPAParam& param, bool value);
    void changed(HPAParam& param);

    std::unique_ptr<Impl> m_impl;
};

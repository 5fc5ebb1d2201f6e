#pragma once

#include <string>
#include <string_view>

#include "platform/param/HPAParam.h"

/// Parameters as the user writes and reads them: found whatever the case of the name, as text. Operations are
/// safe on any thread; floating values follow tcl_precision on the interpreter's thread only.
class param_helper {
public:
    /// The parameter of this name, or of this name in another case. Throws HEXError if there is none.
    static HPAParam& find_param(const std::string& name);

    /// The text form of the value or the default: "1" or "0" for a bool.
    static std::string get_value(const HPAParam& param);
    static std::string get_default_value(const HPAParam& param);
    /// With the digits that tcl_precision asks for; without it, the shortest text that gives the number
    /// again.
    static std::string to_string(float value);

    /// Reads yes, true, no, false in any case, or a number that is 0 or 1 ("+1", "0001", "-0"). False for any
    /// other text, and `value` is as it was.
    static bool to_bool(std::string_view text, bool& value);
    /// Throw HEXError, which names the ends of the range, for a value outside of it.
    static void check_int_range(const HPAParam& param, int value);
    static void check_float_range(const HPAParam& param, double value);
    /// Sets the value from its text form, and the parameters that it drives. Throws HEXError for a text that
    /// does not fit the type or the range.
    static void set_value(HPAParam& param, std::string_view text);

    /// The description, with the range of a number that has one.
    static std::string get_description(const HPAParam& param);
};

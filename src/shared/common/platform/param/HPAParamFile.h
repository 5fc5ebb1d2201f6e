#pragma once

#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/param/HPAParam.h"

/// What a parameter file says of one parameter. Numbers are checked: the default lies in the range, a text
/// default is one of the values.
struct HPAParamDeclaration {
    std::string name;
    HPAType type = HPA_BOOL;
    bool boolDefault = false;
    int intDefault = 0;
    float floatDefault = 0;
    std::string stringDefault;
    bool hasRange = false;
    int intMin = std::numeric_limits<int>::min(), intMax = std::numeric_limits<int>::max();
    float floatMin = std::numeric_limits<float>::lowest(), floatMax = std::numeric_limits<float>::max();
    std::vector<std::string> values;
    HPAParam::LinkedMap linked;
    bool visible = true;
    HPAParam::State state = HPAParam::active;
    std::string description;
};

/// Reads the text of a parameter file:
///
///     # comment
///     parameter general.maxThreads int 8 range 0 1024
///         "The most threads that a command may use."
///     parameter gui.mode string "plain" values "plain" "rich" end hidden deprecated
///         "What the windows look like."
///     parameter place.quick linked false links place.effort !place.check
///         "Switches ..."
///
/// name, type, default; then in any order `range` with two numbers (int, float), `values` with texts up to
/// the word `end` (string), `links` with names (linked; "!" before one that takes the inverse), `hidden`,
/// `deprecated`, `obsolete`; last the description. Throws DataFileScanner::Error at the first fault.
std::vector<HPAParamDeclaration> parse_param_file(std::string_view text);

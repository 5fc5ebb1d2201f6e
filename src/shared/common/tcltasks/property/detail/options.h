#pragma once

#include "platform/property/HCPProperty.h"
#include "tcltasks/core/task.h"

/// The option types that the property commands share.
namespace HTCProperty::detail {

/// Objects of any class, in one collection or several.
inline auto* objects_option() {
    return vek::tcltasks::options::value<HCPProperty::Objects, vek::tcltasks::tcltypes::tclcoll>();
}

/// The same for an option that may be left out.
inline auto* optional_objects_option() {
    return objects_option()->default_value(HCPProperty::Objects(), "unknown");
}

using Strings = vek::tcltasks::tcl_collection<HSTVector<std::string>>;

/// A list of texts that may be left out.
inline auto* strings_option() {
    return vek::tcltasks::options::value<Strings, vek::tcltasks::tcltypes::tclcoll>()->default_value(
        Strings(), "unknown");
}

} // namespace HTCProperty::detail

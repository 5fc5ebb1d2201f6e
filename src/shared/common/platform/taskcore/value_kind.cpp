#include "platform/taskcore/value_kind.h"

#include "tcltasks/core/native_types.h"
#include "tcltasks/core/tcl_value_semantic.h"

namespace vek::tcltasks {

const char* value_kind(const options_description::option& option) {
    using texts = tcl_value_semantic<tcl_collection<HSTVector<std::string>>, tcltypes::tclcoll>;
    using objects_of_any_class = tcl_value_semantic<tcl_collection<HSTVector<tclany>>, tcltypes::tclcoll>;
    if (dynamic_cast<const texts*>(option.semantic.get())) {
        return "a list";
    }
    if (dynamic_cast<const objects_of_any_class*>(option.semantic.get())) {
        return "objects"; // without their class there is nobody to ask for names
    }
    return option.semantic->value_kind();
}

} // namespace vek::tcltasks

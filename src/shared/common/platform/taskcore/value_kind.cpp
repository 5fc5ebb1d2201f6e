#include "platform/taskcore/value_kind.h"

#include "tcltasks/core/native_types.h"
#include "tcltasks/core/tcl_value_semantic.h"

namespace vek::tcltasks {

const char* value_kind(const options_description::option& option) {
    using texts = tcl_value_semantic<tcl_collection<HSTVector<std::string>>, tcltypes::tclcoll>;
    return dynamic_cast<const texts*>(option.semantic.get()) ? "a list" : option.semantic->value_kind();
}

} // namespace vek::tcltasks

// The value semantics of the common types, compiled once for all libraries.
#define CORVANE_INSTANTIATE_SEMANTICS
#include "tcltasks/core/native_types.h"
#include "tcltasks/core/tcl_value_semantic.h"

namespace vek::tcltasks {

const std::string& detail::single_token(const std::vector<std::string>& tokens) {
    return boost::program_options::validators::get_single_string(tokens);
}

template class tcl_value_semantic<bool>;
template class tcl_value_semantic<int>;
template class tcl_value_semantic<unsigned>;
template class tcl_value_semantic<long>;
template class tcl_value_semantic<std::string>;
template class tcl_value_semantic<Tcl_Obj*>;
template class tcl_value_semantic<tclany>;
template class tcl_value_semantic<HATAttr*>;
template class tcl_value_semantic<std::vector<std::string>>;
template class tcl_value_semantic<std::vector<std::string>, tcltypes::tcllist>;
template class tcl_value_semantic<std::vector<Tcl_Obj*>>;
template class tcl_value_semantic<std::vector<Tcl_Obj*>, tcltypes::tcllist>;
template class tcl_value_semantic<HSTVector<std::string>>;
template class tcl_value_semantic<HSTVector<std::string>, tcltypes::tcllist>;
template class tcl_value_semantic<tcl_collection<HSTVector<tclany>>, tcltypes::tclcoll>;
template class tcl_value_semantic<tcl_collection<HSTVector<std::string>>, tcltypes::tclcoll>;
template class tcl_value_semantic<tcl_collection<HSTVector<HATAttrSpec*>>, tcltypes::tclcoll>;
template class tcl_value_semantic<tcl_collection<HSTVector<HCClusterConf*>>, tcltypes::tclcoll>;
template class tcl_value_semantic<tcl_collection<detail::untyped_collection>, tcltypes::tclcoll>;

} // namespace vek::tcltasks

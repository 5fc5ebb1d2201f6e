// The value semantics of the common types, compiled once for all libraries.
#define CORVANE_INSTANTIATE_SEMANTICS
#include "tcltasks/core/tcl_value_semantic.h"

namespace vek::tcltasks {

template class tcl_value_semantic<bool>;
template class tcl_value_semantic<int>;
template class tcl_value_semantic<std::string>;
template class tcl_value_semantic<std::vector<std::string>>;
template class tcl_value_semantic<std::vector<std::string>, tcltypes::tcllist>;

} // namespace vek::tcltasks

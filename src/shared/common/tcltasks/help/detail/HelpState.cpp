#include "tcltasks/help/detail/HelpState.h"

namespace HTCHelp::detail {

bool g_dirtyCategories = false;
Tcl_Interp* g_interp = nullptr;

std::string& g_helpType() {
    static std::string& instance = *new std::string;
    return instance;
}

std::vector<std::string>& g_visibleNamespaces() {
    static std::vector<std::string>& instance = *new std::vector<std::string>;
    return instance;
}

} // namespace HTCHelp::detail

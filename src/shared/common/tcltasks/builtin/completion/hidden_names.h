#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

/// The names that scripts keep out of completion. Process-wide; interpreter's thread.
namespace HTCLibEdit::detail {

/// Names in Tcl's encoding, and whether any were added since the decisions made from them were forgotten.
struct hidden_names {
    std::set<std::string, std::less<>> names;
    bool changed = false;

    /// Takes names in the system encoding. They stay for the life of the process.
    void add(const std::vector<std::string>& more);
};

/// Commands, and namespaces with their trailing "::" whose commands are hidden.
hidden_names& s_hiddenProcs();
/// Namespaces with their trailing "::" that are not offered themselves.
hidden_names& s_hiddenNs();

} // namespace HTCLibEdit::detail

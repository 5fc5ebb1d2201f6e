#include "tcltasks/builtin/completion/hidden_names.h"

#include "platform/tcl/HTCTclEncoding.h"

namespace HTCLibEdit::detail {

void hidden_names::add(const std::vector<std::string>& more) {
    for (const std::string& name : more) {
        names.insert(HTCTclEncoding::toTcl(name));
    }
    changed = true;
}

hidden_names& s_hiddenProcs() {
    static hidden_names& instance = *new hidden_names;
    return instance;
}

hidden_names& s_hiddenNs() {
    static hidden_names& instance = *new hidden_names;
    return instance;
}

} // namespace HTCLibEdit::detail

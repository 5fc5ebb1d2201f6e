#include "tcltasks/property/detail/arghelper.h"

#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"

namespace HTCProperty::detail::arghelper {

namespace {

class not_a_pattern : public vek::tcltasks::bad_tclany_cast {
public:
    explicit not_a_pattern(const std::string& object)
        : m_what(std::string(bad_tclany_cast::what()) + ": '" + object +
                 "' is an object, and beside '-class' only a pattern of names can stand") {}
    const char* what() const noexcept override { return m_what.c_str(); }

private:
    std::string m_what;
};

} // namespace

void adjustObjectAndPatternOrError(HCPProperty::Objects& objects, std::string& pattern,
                                   const std::string& className) {
    if (objects.size() > 0 && !className.empty() && pattern == "*") {
        const auto* const text = (*objects)[0].get_if<std::string>();
        if (!text) {
            throw not_a_pattern((*objects)[0].get_as_string());
        }
        pattern = *text;
        objects = HCPProperty::Objects();
    }
    if (objects.size() > 0 && !className.empty()) {
        errorClassAndObject();
    }
}

void errorClassAndObject() {
    throw HEXAll(ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, "@17-420@"));
}

} // namespace HTCProperty::detail::arghelper

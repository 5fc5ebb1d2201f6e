#include "tcltasks/property/detail/arghelper.h"

#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"

namespace HTCProperty::detail::arghelper {

void adjustObjectAndPatternOrError(HCPProperty::Objects& objects, std::string& pattern,
                                   const std::string& className) {
    if (objects.size() > 0 && !className.empty() && pattern == "*") {
        pattern = vek::tcltasks::any_cast<std::string>((*objects)[0]);
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

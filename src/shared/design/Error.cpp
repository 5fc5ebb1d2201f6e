#include "design/Error.h"

#include "platform/msg/ComMsgMgr.h"

namespace design {

namespace {

ComMsgMgrInstance message_of(Fault fault, const std::string& text) {
    switch (fault) {
    case Fault::unreadable_file:
        return {"design", ComMsgMgr::MSGTYPE_ERROR, "@40-1@%s\n", text};
    case Fault::malformed_netlist:
        return {"design", ComMsgMgr::MSGTYPE_ERROR, "@40-2@%s\n", text};
    case Fault::no_top:
        return {"design", ComMsgMgr::MSGTYPE_ERROR, "@40-3@%s\n", text};
    case Fault::bad_hierarchy:
        return {"design", ComMsgMgr::MSGTYPE_ERROR, "@40-4@%s\n", text};
    case Fault::dead_object:
        return {"design", ComMsgMgr::MSGTYPE_ERROR, "@40-5@%s\n", text};
    case Fault::no_such_property:
        return {"design", ComMsgMgr::MSGTYPE_ERROR, "@40-6@%s\n", text};
    case Fault::bad_property_value:
        return {"design", ComMsgMgr::MSGTYPE_ERROR, "@40-7@%s\n", text};
    case Fault::read_only_property:
        return {"design", ComMsgMgr::MSGTYPE_ERROR, "@40-8@%s\n", text};
    case Fault::bad_property:
        return {"design", ComMsgMgr::MSGTYPE_ERROR, "@40-9@%s\n", text};
    case Fault::bad_filter:
        return {"design", ComMsgMgr::MSGTYPE_ERROR, "@40-11@%s\n", text};
    case Fault::unwritable_file:
        return {"design", ComMsgMgr::MSGTYPE_ERROR, "@40-12@%s\n", text};
    case Fault::no_such_object:
        return {"design", ComMsgMgr::MSGTYPE_ERROR, "@40-13@%s\n", text};
    case Fault::bad_query:
        return {"design", ComMsgMgr::MSGTYPE_ERROR, "@40-14@%s\n", text};
    case Fault::no_design:
        return {"design", ComMsgMgr::MSGTYPE_ERROR, "@40-15@%s\n", text};
    case Fault::interrupted:
        return {"design", ComMsgMgr::MSGTYPE_ERROR, "@40-16@%s\n", text};
    }
    return {"design", ComMsgMgr::MSGTYPE_ERROR, "@40-1@%s\n", text};
}

} // namespace

Error::Error(Fault fault, const std::string& text)
    : HEXError(message_of(fault, text)), fault_(fault), text_(text) {}

} // namespace design

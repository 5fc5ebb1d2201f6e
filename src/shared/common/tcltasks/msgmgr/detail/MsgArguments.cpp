#include "tcltasks/msgmgr/detail/MsgArguments.h"

#include <algorithm>

namespace {

bool may_stand_in_id(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == ' ' || c == '-';
}

} // namespace

bool HTCMsgmgr::validate_msgtype(const std::string& word) {
    ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_ERROR, "@17-171@%s\n", word);
    return false;
}

bool HTCMsgmgr::validate_msgid(const std::string& id) {
    if (const auto bad = std::find_if_not(id.begin(), id.end(), may_stand_in_id); bad != id.end()) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_ERROR, "@17-234@%c%s\n", *bad, id);
        return false;
    }
    if (std::count(id.begin(), id.end(), '-') > 1) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_ERROR, "@17-237@%s\n", id);
        return false;
    }
    return true;
}

void HTCMsgmgr::trim_brackets(std::string& id) {
    id.erase(0, std::min(id.find_first_not_of('['), id.size()));
    id.erase(id.find_last_not_of(']') + 1);
}

void HTCMsgmgr::print_line(const std::string& text) {
    ComMsgMgr::sendMsgString("common", ComMsgMgr::MSGTYPE_OUTPUT, text + '\n');
}

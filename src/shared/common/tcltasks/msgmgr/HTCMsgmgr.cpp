#include "tcltasks/msgmgr/HTCMsgmgr.h"

#include <algorithm>
#include <utility>

#include "platform/msg/HEX.h"

ComMsgMgr::MsgMask HTCMsgmgr::msgString2Type(const std::string& word) {
    if (const ComMsgMgr::MsgMask mask = ComMsgMgr::msgStr2Type(word)) {
        return mask; // mostly written so; no alias is
    }
    static constexpr std::pair<std::string_view, std::string_view> aliases[] = {
        {"ERRORS", "ERROR"},
        {"INFOS", "INFO"},
        {"WARNINGS", "WARNING"},
        {"WARN", "WARNING"},
        {"CRITICAL WARNINGS", "CRITICAL WARNING"},
        {"ADVISORIES", "ADVISORY"},
    };
    std::string upper = word;
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    for (const auto& [alias, canonical] : aliases) {
        if (upper == alias) {
            return ComMsgMgr::msgStr2Type(canonical);
        }
    }
    return ComMsgMgr::msgStr2Type(upper);
}

ComMsgMgr::MsgMask HTCMsgmgr::requireMsgType(const std::string& word) {
    const ComMsgMgr::MsgMask mask = msgString2Type(word);
    if (mask == 0) {
        throw HEXError({"common", ComMsgMgr::MSGTYPE_ERROR, "@17-171@%s\n", word});
    }
    return mask;
}

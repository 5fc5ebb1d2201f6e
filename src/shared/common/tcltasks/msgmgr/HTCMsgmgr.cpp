#include "tcltasks/msgmgr/HTCMsgmgr.h"

#include <algorithm>
#include <utility>

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

#include "tcltasks/builtin/HTCBuiltinUtils.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <iterator>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <typeinfo>

#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"
#include "platform/tcl/tclobj_ref.h"

namespace {

class index_overflow : public std::bad_cast {
public:
    explicit index_overflow(std::string_view number)
        : m_what("the number '" + std::string(number) + "' in an index is not an integer of 32 bits") {}
    const char* what() const noexcept override { return m_what.c_str(); }

private:
    std::string m_what;
};

int to_int(std::string_view number) {
    std::string_view digits = number;
    if (digits.starts_with('+')) {
        digits.remove_prefix(1);
    }
    int value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value);
    if (error != std::errc() || stop != end) {
        throw index_overflow(number);
    }
    return value;
}

// The bar counts as a sign: as an operator it adds, before a number it makes the number unreadable.
bool is_sign(char c) {
    return c == '+' || c == '-' || c == '|';
}

// The length of the digits that a text begins with.
size_t digits(std::string_view text) {
    return std::min(text.find_first_not_of("0123456789"), text.size());
}

int clamp_to_int(long long value) {
    return static_cast<int>(
        std::clamp<long long>(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

} // namespace

int HTCBuiltinUtils::parseIndex(const std::string& index, int last) {
    const std::string_view text = index;
    const bool fromEnd = text.starts_with("end");
    size_t baseLength = 3;
    if (!fromEnd) {
        const size_t sign = !text.empty() && is_sign(text[0]) ? 1 : 0;
        const size_t count = digits(text.substr(sign));
        baseLength = count ? sign + count : 0;
    }
    const std::string_view base = text.substr(0, baseLength);
    const std::string_view offset = text.substr(baseLength);
    const bool wellFormed =
        !base.empty() && (offset.empty() || (offset.size() > 1 && is_sign(offset[0]) &&
                                             digits(offset.substr(1)) + 1 == offset.size()));
    if (!wellFormed) {
        throw std::invalid_argument("bad index \"" + index +
                                    "\": must be integer?[+-]integer? or end?[+-]integer?");
    }
    const long long start = fromEnd ? last : to_int(base);
    if (offset.empty()) {
        return static_cast<int>(start);
    }
    const long long distance = to_int(offset.substr(1));
    return clamp_to_int(offset[0] == '-' ? start - distance : start + distance);
}

namespace {

// In the order of plain_command.
constexpr const char* plainNames[] = {"::tcl::lappend", "::tcl::lindex",   "::tcl::load",
                                      "::tcl::lrange",  "::tcl::lreplace", "::tcl::lreverse",
                                      "::tcl::lsearch", "::tcl::lset",     "::tcl::lsort"};

// The names as values, which remember the commands that they were last resolved to. One set for each thread.
struct plain_names {
    plain_names() {
        std::transform(std::begin(plainNames), std::end(plainNames), names,
                       [](const char* name) { return Tcl_NewStringObj(name, -1); });
    }

    vek::tcltasks::tclobj_ref names[std::size(plainNames)];
};

// Values must be given back before Tcl closes down its thread, which is earlier than a thread_local's end.
thread_local plain_names* namesOfThread = nullptr;

void drop_names(ClientData) {
    delete namesOfThread;
    namesOfThread = nullptr;
}

Tcl_Obj* name_of(HTCBuiltinUtils::plain_command command) {
    if (!namesOfThread) {
        namesOfThread = new plain_names;
        Tcl_CreateThreadExitHandler(drop_names, nullptr);
    }
    return namesOfThread->names[static_cast<int>(command)].get();
}

} // namespace

int HTCBuiltinUtils::call_plain(plain_command command, Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) {
    Tcl_Obj* const name = name_of(command);
    Tcl_CmdInfo plain;
    if (Tcl_GetCommandInfoFromToken(Tcl_GetCommandFromObj(interp, name), &plain)) {
        // Called without an evaluation of its own: errors then speak of the command that the script wrote.
        return plain.objProc(plain.objClientData, interp, objc, objv);
    }
    // Not for Tcl's search for unknown commands, which is written with these very commands.
    Tcl_SetObjResult(interp, Tcl_ObjPrintf("invalid command name \"%s\"", Tcl_GetString(name)));
    Tcl_SetErrorCode(interp, "TCL", "LOOKUP", "COMMAND", Tcl_GetString(name), nullptr);
    return TCL_ERROR;
}

int HTCBuiltinUtils::report_exception(const char* unknown) noexcept {
    try {
        throw;
    } catch (const HEXAll& failure) {
        ComMsgMgr::sendMessage(failure.message());
    } catch (const std::exception& failure) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_ERROR, "@17-251@%s\n", failure.what());
    } catch (...) {
        if (unknown) {
            std::fputs(unknown, stdout);
        }
    }
    return TCL_ERROR;
}

#include "platform/taskcore/option_messages.h"

#include "platform/env/HSTStringUtils.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/taskcore/value_kind.h"
#include "platform/tcl/HTCTclEncoding.h"

namespace vek::tcltasks {

namespace {

constexpr auto error = ComMsgMgr::MSGTYPE_ERROR;

std::string join(const std::vector<std::string>& words) {
    std::string text;
    for (size_t i = 0; i < words.size(); ++i) {
        text += i == 0 ? "" : i + 1 < words.size() ? ", " : " or ";
        text += words[i];
    }
    return text;
}

std::string suggestion(const std::string& word, const std::vector<std::string>& candidates) {
    const std::string nearest = HSTStringUtils::nearest(word, candidates);
    return nearest.empty() ? std::string() : "Did you mean '" + nearest + "'? ";
}

// A value of millions of characters would bury the message that it stands in.
std::string shortened(const std::string& value) {
    constexpr size_t most = 200;
    if (value.size() <= most) {
        return value;
    }
    size_t cut = most;
    while (cut > 0 && (static_cast<unsigned char>(value[cut]) & 0xC0) == 0x80) {
        --cut;
    }
    return value.substr(0, cut) + "... (" + std::to_string(value.size()) + " bytes)";
}

} // namespace

namespace option_messages {

HEXError unknown_option(const std::string& command, const std::string& word,
                        const options_description& options) {
    const auto candidates = options.candidates({});
    return HEXError({"common", error, "@17-5001@%s%s%s%s\n", shortened(word), command,
                     suggestion(word, candidates), join(candidates)});
}

HEXError ambiguous_option(const std::string& command, const std::string& word,
                          const options_description& options) {
    return HEXError({"common", error, "@17-5002@%s%s%s\n", word, command,
                     join(options.candidates(std::string_view(word).substr(1)))});
}

HEXError missing_value(const std::string& command, const options_description::option& option) {
    return HEXError({"common", error, "@17-5003@%s%s%s\n", option.name, command,
                     option.choices.empty() ? value_kind(option) : join(option.choices)});
}

HEXError invalid_value(const std::string& command, const std::string& switchName, const std::string& value,
                       const options_description* options) {
    std::string expected = value.empty() ? "one that is not empty" : "a value of another kind";
    const int index = options ? options->find(switchName) : -1;
    if (index >= 0) {
        const auto& option = options->options()[static_cast<size_t>(index)];
        expected = option.choices.empty() ? value_kind(option)
                                          : join(option.choices) + "; " + suggestion(value, option.choices);
        while (expected.ends_with(' ') || expected.ends_with(';')) {
            expected.pop_back();
        }
    }
    return HEXError(
        {"common", error, "@17-5004@%s%s%s%s\n", shortened(value), switchName, command, expected});
}

HEXError repeated_option(const std::string& command, const std::string& switchName) {
    return HEXError({"common", error, "@17-5005@%s%s\n", switchName, command});
}

HEXError unexpected_argument(const std::string& command, const std::string& word, const std::string& usage) {
    return HEXError({"common", error, "@17-5006@%s%s%s\n", shortened(word), command, usage});
}

HEXError missing_option(const std::string& command, const std::string& name, const std::string& usage) {
    return HEXError({"common", error, "@17-5007@%s%s%s\n", name, command, usage});
}

HEXError excluded_option(const std::string& command, const std::string& name, const std::string& other) {
    return HEXError({"common", error, "@17-5008@%s%s%s\n", name, other, command});
}

HEXError untyped_collection_repeated(const std::string& command) {
    return HEXError({"common", error, "@17-5009@%s\n", command});
}

HEXError failed(const std::string& command, const std::string& reason) {
    // The message ends the sentence; a reason that is one already gives up its own full stop.
    const bool ended = reason.ends_with('.') && !reason.ends_with("..");
    return HEXError({"common", error, "@17-5011@%s%s\n", command, reason.substr(0, reason.size() - ended)});
}

HEXError of(const HTCErrors::error& fault, const std::string& command, const options_description* options) {
    if (const auto* value = dynamic_cast<const HTCErrors::invalid_option_value*>(&fault)) {
        return invalid_value(command, value->switch_name(), value->value(), options);
    }
    if (const auto* repeated = dynamic_cast<const HTCErrors::multiple_occurrences*>(&fault)) {
        return repeated_option(command, repeated->switch_name());
    }
    if (dynamic_cast<const HTCErrors::append_untyped_collection*>(&fault)) {
        return untyped_collection_repeated(command);
    }
    return failed(command, fault.what());
}

} // namespace option_messages

int fail_with(Tcl_Interp* interp, const HEXAll& error) {
    Tcl_SetObjResult(interp, HTCTclEncoding::tclNewStringObj(error.what()));
    const std::string id = error.message().id();
    Tcl_SetErrorCode(interp, "CORVANE", id.c_str(), nullptr);
    return TCL_ERROR;
}

std::string called_as(Tcl_Obj* word) {
    const std::string text = HTCTclEncoding::tclGetString(word);
    return text.starts_with("::") ? text.substr(2) : text;
}

} // namespace vek::tcltasks

#include "platform/property/HATAttrUtils.h"

#include <algorithm>
#include <type_traits>

#include "platform/env/HUTConvert.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"
#include "platform/tcl/HTCTclEncoding.h"

namespace {

using namespace HATAttrTypes;

std::string double_text(double value) {
    char buffer[TCL_DOUBLE_SPACE];
    Tcl_PrintDouble(nullptr, value, buffer);
    return buffer;
}

template <class T>
std::string text_of(const T& value) {
    if constexpr (std::is_same_v<T, std::monostate>) {
        return {};
    } else if constexpr (std::is_same_v<T, std::string>) {
        return value;
    } else if constexpr (std::is_same_v<T, bool>) {
        return value ? "1" : "0";
    } else if constexpr (std::is_same_v<T, double>) {
        return double_text(value);
    } else if constexpr (std::is_integral_v<T>) {
        return std::to_string(value);
    } else {
        std::string text;
        bool first = true;
        for (const auto& element : value) {
            text += first ? "" : " ";
            text += text_of(element);
            first = false;
        }
        return text;
    }
}

template <class T>
Tcl_Obj* tcl_of(const T& value) {
    if constexpr (std::is_same_v<T, std::monostate>) {
        return Tcl_NewObj();
    } else if constexpr (std::is_same_v<T, std::string>) {
        return HTCTclEncoding::tclNewStringObj(value);
    } else if constexpr (std::is_same_v<T, double>) {
        return Tcl_NewDoubleObj(value);
    } else if constexpr (std::is_integral_v<T>) {
        return Tcl_NewLongObj(value);
    } else {
        Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
        for (const auto& element : value) {
            Tcl_ListObjAppendElement(nullptr, list, tcl_of(element));
        }
        return list;
    }
}

struct type_word {
    const char* word;
    AttrType type;
};

constexpr type_word type_words[] = {
    {"string", type_string},     {"enum", type_enum},
    {"int", type_int},           {"long", type_long},
    {"double", type_double},     {"bool", type_bool},
    {"file", type_file},         {"string_list", type_string_list},
    {"int_list", type_int_list}, {"double_list", type_double_list},
};

// Reads a text as a Tcl list; nothing if it is none.
std::optional<std::vector<std::string>> words_of(const std::string& text) {
    const std::string utf = HTCTclEncoding::toTcl(text);
    int count = 0;
    const char** words = nullptr;
    if (Tcl_SplitList(nullptr, utf.c_str(), &count, &words) != TCL_OK) {
        return std::nullopt;
    }
    std::vector<std::string> list;
    list.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        list.push_back(HTCTclEncoding::fromTcl(words[i]));
    }
    Tcl_Free(reinterpret_cast<char*>(words));
    return list;
}

template <class T>
bool parse(const std::string& text, T& value) {
    if constexpr (std::is_same_v<T, bool>) {
        return HUTConvert::toBool(text, value);
    } else if constexpr (std::is_same_v<T, double>) {
        return HUTConvert::stringToFloat(text, value);
    } else if constexpr (std::is_integral_v<T>) {
        return HUTConvert::stringToInteger(text, value);
    } else if constexpr (std::is_same_v<T, std::string>) {
        value = text;
        return true;
    } else {
        const auto words = words_of(text);
        if (!words) {
            return false;
        }
        for (const std::string& word : *words) {
            typename T::value_type element{};
            if (!parse(word, element)) {
                return false;
            }
            value.push_back(std::move(element));
        }
        return true;
    }
}

// A value of type T for the property: as it is, or from its text. Empty if it cannot be one.
template <class T>
HATAttrAny as(const HATAttrAny& value) {
    if (std::holds_alternative<T>(value)) {
        return value;
    }
    if constexpr (std::is_same_v<T, double>) {
        if (const auto number = HATAttrUtils::numberOf(value)) {
            return *number;
        }
    }
    T parsed{};
    return parse(HATAttrUtils::getStringValue(value), parsed) ? HATAttrAny(std::move(parsed)) : HATAttrAny();
}

HATAttrAny of_type(AttrType type, const HATAttrAny& value) {
    switch (type) {
    case type_bool:
        return as<bool>(value);
    case type_int:
        return as<int>(value);
    case type_long:
        return as<long>(value);
    case type_double:
        return as<double>(value);
    case type_int_list:
        return as<std::vector<int>>(value);
    case type_double_list:
        return as<std::vector<double>>(value);
    case type_string_list:
        return as<std::vector<std::string>>(value);
    case type_string:
    case type_enum:
    case type_file:
        break;
    }
    return as<std::string>(value);
}

bool within(double number, const std::pair<double, double>& range) {
    return number >= range.first && number <= range.second;
}

bool in_range(const HATAttrSpec& spec, const HATAttrAny& value) {
    if (const auto& range = spec.getRange()) {
        if (const auto number = HATAttrUtils::numberOf(value)) {
            return within(*number, *range);
        }
        const auto all = [&](const auto& list) {
            return std::all_of(list.begin(), list.end(), [&](auto n) { return within(n, *range); });
        };
        if (const auto* list = std::get_if<std::vector<int>>(&value)) {
            return all(*list);
        }
        if (const auto* list = std::get_if<std::vector<double>>(&value)) {
            return all(*list);
        }
    }
    if (const auto* text = std::get_if<std::string>(&value)) {
        const auto& words = spec.getEnumRange();
        if (!words.empty()) {
            return std::find(words.begin(), words.end(), *text) != words.end();
        }
        const auto& extensions = spec.getFileExtRange();
        if (spec.getAttrType() == type_file && !extensions.empty() && !text->empty()) {
            return std::any_of(extensions.begin(), extensions.end(), [&](const std::string& extension) {
                return text->ends_with("." + extension);
            });
        }
    }
    return true;
}

std::string quoted_list(const std::vector<std::string>& words, const char* before) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "'" : ", '") + (before + word) + "'";
    }
    return text;
}

} // namespace

std::string HATAttrUtils::getStringValue(const HATAttrAny& value) {
    return std::visit([](const auto& v) { return text_of(v); }, value);
}

std::string HATAttrUtils::getStringValue(const HATAttr& attr) {
    return getStringValue(attr.getValue());
}

std::string HATAttrUtils::getStringValue(const HATAttrAny& value, const HATAttrSpec*) {
    return getStringValue(value);
}

Tcl_Obj* HATAttrUtils::getTclValue(const HATAttrAny& value) {
    return std::visit([](const auto& v) { return tcl_of(v); }, value);
}

const char* HATAttrUtils::getStringType(AttrType type) {
    for (const type_word& known : type_words) {
        if (known.type == type) {
            return known.word;
        }
    }
    return "unknown";
}

std::optional<AttrType> HATAttrUtils::getValueType(const HATAttrAny& value) {
    static constexpr AttrType types[] = {type_string,   type_bool,        type_int,
                                         type_long,     type_double,      type_string,
                                         type_int_list, type_double_list, type_string_list};
    return value.index() == 0 ? std::nullopt : std::optional(types[value.index()]);
}

std::optional<AttrType> HATAttrUtils::getAttrType(std::string_view word) {
    for (const type_word& known : type_words) {
        const std::string_view name = known.word;
        if (name.size() == word.size() && ::strncasecmp(name.data(), word.data(), word.size()) == 0) {
            return known.type;
        }
    }
    return std::nullopt;
}

std::optional<double> HATAttrUtils::numberOf(const HATAttrAny& value) {
    return std::visit(
        [](const auto& v) -> std::optional<double> {
            if constexpr (std::is_arithmetic_v<std::decay_t<decltype(v)>>) {
                return static_cast<double>(v);
            } else {
                return std::nullopt;
            }
        },
        value);
}

std::optional<double> HATAttrUtils::numberFrom(std::string_view text) {
    double number = 0;
    return HUTConvert::stringToFloat(text, number) ? std::optional(number) : std::nullopt;
}

std::string HATAttrUtils::numberText(double value) {
    char text[64];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

bool HATAttrUtils::less(const HATAttrAny& a, const HATAttrAny& b) {
    const auto *whole = std::get_if<long>(&a), *other = std::get_if<long>(&b);
    if (whole && other) {
        return *whole < *other;
    }
    const auto x = numberOf(a), y = numberOf(b);
    return x && y ? *x < *y : getStringValue(a) < getStringValue(b);
}

bool HATAttrUtils::writable(const HATAttrSpec* spec, bool objectWritable) {
    return spec && objectWritable && !spec->isReadOnly();
}

void HATAttrUtils::writableOrError(const HATAttrSpec* spec, const std::string& name) {
    if (!writable(spec)) {
        throw HEXError(ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, "@17-5354@%s\n", name));
    }
}

HATAttrAny HATAttrUtils::convert(const HATAttrSpec& spec, const HATAttrAny& value) {
    HATAttrAny converted = of_type(spec.getAttrType(), value);
    if (converted.index() == 0 || !in_range(spec, converted)) {
        throw HEXError(ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, "@17-5355@%s%s%s\n",
                                         getStringValue(value), spec.getName(), accepted(spec)));
    }
    return converted;
}

std::string HATAttrUtils::accepted(const HATAttrSpec& spec) {
    if (spec.isEnumerated()) {
        return "one of " + quoted_list(spec.getEnumRange(), "");
    }
    const auto numbers = [&](const char* kind) {
        const auto& range = spec.getRange();
        return range ? std::string(kind) + " from " + numberText(range->first) + " to " +
                           numberText(range->second)
                     : std::string(kind);
    };
    switch (spec.getAttrType()) {
    case type_bool:
        return "a bool: true or false, yes or no, on or off, 1 or 0";
    case type_int:
        return numbers("a whole number of 32 bits");
    case type_long:
        return numbers("a whole number of 64 bits");
    case type_double:
        return numbers("a number");
    case type_int_list:
        return numbers("a list of whole numbers");
    case type_double_list:
        return numbers("a list of numbers");
    case type_string_list:
        return "a list";
    case type_file:
        if (!spec.getFileExtRange().empty()) {
            return "a file whose name ends in " + quoted_list(spec.getFileExtRange(), ".");
        }
        return "a file name";
    case type_string:
    case type_enum:
        break;
    }
    return "a text";
}

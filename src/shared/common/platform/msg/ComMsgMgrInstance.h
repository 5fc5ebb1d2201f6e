#pragma once

#include <concepts>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "platform/msg/detail/MsgFormat.h"

/// A message's severity or destination: one bit for each, named in ComMsgMgr.
using ComMsgMgrMask = std::uint32_t;

/// The value of one message argument. Text is bytes: it is never interpreted as a format.
using ComMsgMgrArg = std::variant<std::string, std::int64_t, std::uint64_t, double>;

namespace com_msg_mgr {

/// The letter of the n-th conversion (from 0) behind the second '@' of a key, or 0 behind the last one.
/// Length modifiers (h, l, z) are passed over.
constexpr char key_conversion(std::string_view key, std::size_t n) {
    const std::size_t types = key.find('@', 1);
    for (std::size_t i = types; types != std::string_view::npos && i < key.size(); ++i) {
        if (key[i] != '%')
            continue;
        for (++i; i < key.size() && (key[i] == 'h' || key[i] == 'l' || key[i] == 'z'); ++i)
            ;
        if (i < key.size() && n-- == 0)
            return key[i];
    }
    return 0;
}

/// True for "@", digits, "-", digits, "@".
constexpr bool is_key(std::string_view key) {
    std::size_t i = 0;
    const auto digits = [&] {
        const std::size_t first = i;
        while (i < key.size() && key[i] >= '0' && key[i] <= '9')
            ++i;
        return i > first;
    };
    const auto one = [&](char c) { return i < key.size() && key[i++] == c; };
    return one('@') && digits() && one('-') && digits() && one('@');
}

template <class T>
constexpr bool fits_conversion(char conversion) {
    using V = std::remove_cvref_t<T>;
    switch (conversion) {
    case 's':
        return std::is_convertible_v<T, std::string_view> || std::is_same_v<V, std::filesystem::path>;
    case 'c':
        return std::is_same_v<V, char>;
    case 'd':
    case 'i':
    case 'u':
    case 'x':
        return std::is_integral_v<V> && !std::is_same_v<V, char>;
    case 'f':
    case 'g':
    case 'e':
        return std::is_floating_point_v<V>;
    default:
        return false;
    }
}

template <class T>
ComMsgMgrArg to_arg(const T& value) {
    const auto own = [](const auto& view) -> ComMsgMgrArg {
        if constexpr (std::is_same_v<std::decay_t<decltype(view)>, std::string_view>)
            return std::string(view);
        else
            return view;
    };
    return std::visit(own, to_view(value));
}

/// A message key such as "@17-153@%s\n", compared with the arguments that go with it when the code is
/// compiled: a wrong number or type of arguments does not compile. The key's characters must live for ever.
template <class... Args>
class Key {
public:
    consteval Key(const char* key) : m_key(key) {
        if (!is_key(m_key))
            throw "a message key looks like @17-153@%s";
        std::size_t n = 0;
        if (!(fits_conversion<Args>(key_conversion(m_key, n++)) && ...))
            throw "the arguments do not fit the types of the message key";
        if (key_conversion(m_key, sizeof...(Args)) != 0)
            throw "the message key has more types than arguments are given";
    }
    constexpr std::string_view text() const { return m_key; }
    /// "17-153" of "@17-153@%s".
    constexpr std::string_view number() const { return m_key.substr(1, m_key.find('@', 1) - 1); }

private:
    std::string_view m_key;
};

} // namespace com_msg_mgr

/// One message: subsystem, key and arguments, severity. It is made cheaply (the arguments are copied); the
/// words are looked up in the message database and formatted when a text is asked for.
///
///     throw HEXError(ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, "@17-153@%s\n", name));
///
/// A message may also bring words of its own; each "%s" in them then takes the next argument, and all else
/// stands as it is. Arguments may hold any bytes and have any length. Reading is safe on any thread.
class ComMsgMgrInstance {
public:
    /// What an argument speaks of.
    enum MetaType { none, file, line_number, pin, block, reg, operator_, net, io_port, instance, site };
    struct Meta {
        std::size_t argument; ///< from 0
        MetaType type;
        std::string value;
        std::string context;
    };
    /// A bit set of the manager's operating modes.
    using OperatingMode = int;

    /// \param key a literal; its conversions and the arguments must agree: %s text or path, %c char,
    /// %d %i %u %x integers, %f %g %e floating point numbers.
    template <class... Args>
    ComMsgMgrInstance(std::string_view subsystem, ComMsgMgrMask mask,
                      com_msg_mgr::Key<std::type_identity_t<Args>...> key, const Args&... args)
        : ComMsgMgrInstance(subsystem, mask, key.text(),
                            std::vector<ComMsgMgrArg>{com_msg_mgr::to_arg(args)...}) {}

    /// The same with a key that is only known at run time. Throws std::invalid_argument for a text that is
    /// no key; arguments that do not fit the key are shown in their own form.
    static ComMsgMgrInstance fromKey(std::string_view subsystem, ComMsgMgrMask mask, std::string_view key,
                                     std::vector<ComMsgMgrArg> args);

    /// A message with words of its own and no id. One line end at the end of the words is not part of them.
    static ComMsgMgrInstance createInstance(std::string_view subsystem, ComMsgMgrMask mask,
                                            std::string_view format, std::vector<std::string> args);
    /// A message with words of its own whose id is that of its subsystem with a number: 5 of "common" is
    /// "Common 17-5", 5 of a subsystem without messages "Mine 5". The flag is reserved and false.
    ComMsgMgrInstance(std::string_view subsystem, int number, bool, ComMsgMgrMask mask,
                      std::string_view format, std::vector<std::string> args);
    /// The same with a number that has a prefix: {"ADRC", 123} of "Mine" is "Mine ADRC-123".
    ComMsgMgrInstance(std::string_view subsystem, ComMsgMgrMask mask,
                      const std::pair<std::string, unsigned>& gid, std::string_view format,
                      std::vector<std::string> args);
    /// A complete text under a complete id, which may be empty.
    static ComMsgMgrInstance fromText(std::string_view subsystem, ComMsgMgrMask mask, std::string_view id,
                                      std::string_view text);

    /// Says what an argument speaks of, for windows that show more than text. \param argument counts from 0
    void attachMetaType(std::size_t argument, MetaType type, const std::string& value,
                        const std::string& context);
    const std::vector<Meta>& metaTypes() const;

    /// What the message means and what to do; help on messages shows it. Without them the database's hold.
    void setDescription(const std::string& text);
    void setResolution(const std::string& text);
    std::string getDescription() const;
    std::string getResolution() const;

    /// The operating modes in which the message is shown; all of them at first.
    void setDisplayInModes(OperatingMode modes);
    OperatingMode displayInModes() const;

    const std::string& subsystem() const { return m_subsystem; }
    /// The severity of the message.
    ComMsgMgrMask getType() const { return m_mask; }
    /// The severity that the message was made with, before setType() changed it.
    ComMsgMgrMask getDefaultSeverity() const { return m_defaultMask; }
    /// Gives the message another severity, as rules do.
    void setType(ComMsgMgrMask mask) { m_mask = mask; }
    /// Whether the message was kept from being shown by the operating mode.
    bool isSuppressed() const;
    void setSuppressed(bool suppressed);

    /// The key's numbers, as "17-153"; empty for a message with words of its own.
    std::string_view number() const { return m_ownWords ? std::string_view() : std::string_view(m_number); }
    const std::vector<ComMsgMgrArg>& args() const { return m_args; }

    /// The subsystem's alias and the key's numbers, as "Common 17-153", or the id that the sender gave; empty
    /// for a message without one.
    std::string id() const;
    /// The words with the arguments filled in, without a line end. A message that the database does not know
    /// says so and lists its arguments.
    std::string text() const;
    /// The message as it is shown, "<SEVERITY>: [<Alias> <id>] <text>", without a line end. A message that is
    /// a plain line of output, by its mask, is its text alone.
    std::string line() const;
    /// line() with a line end.
    std::string getMessage() const { return line() + '\n'; }
    /// The memory held by the message's texts, in bytes.
    std::size_t bytes() const;

private:
    struct Extras {
        std::vector<Meta> metaTypes;
        std::string description;
        std::string resolution;
        OperatingMode displayInModes = -1;
        bool suppressed = false;
    };

    ComMsgMgrInstance(std::string_view subsystem, ComMsgMgrMask mask, std::string_view key,
                      std::vector<ComMsgMgrArg> args);
    /// What few messages have. Made when first written; copies of the message have their own.
    Extras& extras();
    void appendText(std::string& out) const;

    std::string m_subsystem;
    ComMsgMgrMask m_mask;
    ComMsgMgrMask m_defaultMask;
    bool m_ownWords = false;
    std::string m_number; ///< of the key; the whole id of a message with words of its own
    std::string m_words;  ///< of the message's own
    std::vector<ComMsgMgrArg> m_args;
    std::shared_ptr<const Extras> m_extras;
};

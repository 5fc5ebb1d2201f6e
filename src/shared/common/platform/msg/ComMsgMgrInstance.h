#pragma once

#include <concepts>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

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
    if constexpr (std::is_same_v<T, char>)
        return std::string(1, value);
    else if constexpr (std::is_same_v<T, std::filesystem::path>)
        return value.string();
    else if constexpr (std::is_floating_point_v<T>)
        return static_cast<double>(value);
    else if constexpr (std::is_integral_v<T> && std::is_signed_v<T>)
        return static_cast<std::int64_t>(value);
    else if constexpr (std::is_integral_v<T>)
        return static_cast<std::uint64_t>(value);
    else if constexpr (std::is_pointer_v<T>)
        return std::string(value ? value : "(null)");
    else
        return std::string(std::string_view(value));
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
/// Arguments may hold any bytes and have any length. All operations are safe on any thread.
class ComMsgMgrInstance {
public:
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

    const std::string& subsystem() const { return m_subsystem; }
    /// The severity that the message was made with.
    ComMsgMgrMask getType() const { return m_mask; }
    /// The key's numbers, as "17-153".
    std::string_view number() const { return m_number; }
    const std::vector<ComMsgMgrArg>& args() const { return m_args; }

    /// The subsystem's alias and the key's numbers, as "Common 17-153".
    std::string id() const;
    /// The database's words with the arguments filled in, without a line end. A message that the database
    /// does not know says so and lists its arguments.
    std::string text() const;
    /// The message as it is shown, "<SEVERITY>: [<Alias> <id>] <text>", without a line end. A message that is
    /// a plain line of output, by its mask, is its text alone.
    std::string line() const;
    /// line() with a line end.
    std::string getMessage() const { return line() + '\n'; }
    /// The memory held by the arguments, in bytes.
    std::size_t argBytes() const;

private:
    ComMsgMgrInstance(std::string_view subsystem, ComMsgMgrMask mask, std::string_view key,
                      std::vector<ComMsgMgrArg> args);

    std::string m_subsystem;
    ComMsgMgrMask m_mask;
    std::string m_number;
    std::vector<ComMsgMgrArg> m_args;
};

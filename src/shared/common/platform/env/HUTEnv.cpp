#include "platform/env/HUTEnv.h"

#include "platform/env/HSTStringUtils.h"
#include "platform/env/HUTFile.h"
#include "platform/env/HUTPathUtils.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <langinfo.h>
#include <memory>
#include <mutex>
#include <pwd.h>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace {

constexpr uint32_t warning_mask = 0x8000000;
constexpr uint32_t plain_text_mask = 0x20000;

using sink = std::function<void(const HUTEnvMessage&)>;

// Lives as long as the process, so it can be used from exit handlers.
struct state {
    HUTProductInfo product; // set before other threads run
    std::atomic<bool> regress{false};
    std::atomic<int> tcl_debug{-1}; // -1 until the environment has been asked

    std::mutex mutex; // guards all below
    std::string tmp_dir;
    std::vector<std::string> cmdline;
    std::string approot;            // the value of OMU_APPROOT that `roots` was made of
    std::vector<std::string> roots; // empty until first asked for
    std::shared_ptr<const sink> message_sink;
    std::vector<HUTEnvMessage> pending;
    bool sends_at_once = false;
};

state& env() {
    static state& the_state = *new state;
    return the_state;
}

bool is_yes(const char* value) {
    using S = HSTStringUtils;
    return value && (S::iequals(value, "1") || S::iequals(value, "yes") || S::iequals(value, "true") ||
                     S::iequals(value, "on"));
}

// The file that this code was loaded from, by the system's own table of what is mapped where: the loader only
// knows the name that it was given, which may count from a directory that has since been left.
std::string mapped_file_of(const void* address) {
    std::string maps;
    try {
        maps = HUTFile::read("/proc/self/maps");
    } catch (const std::system_error&) {
        return {};
    }
    for (const std::string& line : HSTStringUtils::split(maps, '\n')) {
        unsigned long first = 0, behind = 0;
        if (std::sscanf(line.c_str(), "%lx-%lx", &first, &behind) != 2)
            continue;
        const auto at = reinterpret_cast<unsigned long>(address);
        const size_t path = line.find('/');
        if (at >= first && at < behind && path != std::string::npos)
            return line.substr(path);
    }
    return {};
}

// The application root above the "lib" or "bin" that holds this code.
std::string find_own_root() {
    const void* here = reinterpret_cast<const void*>(&find_own_root);
    Dl_info info;
    std::string file;
    if (::dladdr(here, &info) != 0 && info.dli_fname && info.dli_fname[0] == '/')
        file = info.dli_fname;
    else
        file = mapped_file_of(here);
    file = HUTFile::getCanonicalName(file);
    for (int up = 0; up < 2 && !file.empty(); ++up)
        file.erase(std::min(file.rfind('/'), file.size()));
    return file;
}

const std::string& own_root() {
    static const std::string& root = *new std::string(find_own_root());
    return root;
}

std::vector<std::string> make_roots(const std::string& approot) {
    std::vector<std::string> roots;
    auto add = [&](const std::string& directory) {
        if (directory.empty() || !HUTPathUtils::isDirectory(directory))
            return;
        std::string root = HUTFile::getCanonicalName(directory);
        if (std::find(roots.begin(), roots.end(), root) == roots.end())
            roots.push_back(std::move(root));
    };
    for (const std::string& directory : HSTStringUtils::split(approot, ':'))
        add(directory);
    const std::string& own = own_root();
    add(own);
    add(HUTPathUtils::join({own, "share/tcl8.6"}));
    return roots;
}

// One word of a command line such that the line shows where it begins and ends and stays one line.
std::string quoted(const std::string& word) {
    constexpr std::string_view plain = "-_./:=,+@%^~";
    const bool is_plain = !word.empty() && std::all_of(word.begin(), word.end(), [&](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
               static_cast<unsigned char>(c) >= 0x80 || plain.find(c) != std::string_view::npos;
    });
    if (is_plain)
        return word;
    std::string text = "\"";
    for (const char c : word) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\' || c == '$' || c == '`') {
            text += '\\';
            text += c;
        } else if (c == '\n') {
            text += "\\n";
        } else if (c == '\t') {
            text += "\\t";
        } else if (byte < 0x20 || byte == 0x7F) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02x", byte);
            text += escape;
        } else {
            text += c;
        }
    }
    return text + '"';
}

std::vector<std::string> cmdline_words() {
    {
        const std::lock_guard lock(env().mutex);
        if (!env().cmdline.empty())
            return env().cmdline;
    }
    try {
        std::string bytes = HUTFile::read("/proc/self/cmdline");
        if (!bytes.empty() && bytes.back() == '\0')
            bytes.pop_back();
        return HSTStringUtils::split(bytes, '\0');
    } catch (const std::system_error&) {
        return {HUTEnv::getProgramName()};
    }
}

std::string joined(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) {
        if (!line.empty())
            line += ' ';
        line += quoted(word);
    }
    return line;
}

// The variable's value if it is an absolute path: what counts from the working directory would name another
// place in each session.
std::string absolute_from_env(const char* name) {
    const char* value = std::getenv(name);
    return value && value[0] == '/' ? std::string(value) : std::string();
}

} // namespace

void HUTEnv::setProductInfo(HUTProductInfo info) {
    env().product = std::move(info);
}

const std::string& HUTEnv::getProductName() {
    return env().product.name;
}

const std::string& HUTEnv::getProductVersion() {
    return env().product.version;
}

std::string HUTEnv::getProductMajorMinorVersion() {
    const std::string& version = getProductVersion();
    const size_t dot = version.find('.');
    return dot == std::string::npos ? version : version.substr(0, version.find('.', dot + 1));
}

const std::string& HUTEnv::getProgramName() {
    return env().product.programName;
}

std::string HUTEnv::getTclPackageVersion() {
    const std::string& version = getProductVersion();
    std::string numbers;
    for (const char c : version) {
        const bool digit = c >= '0' && c <= '9';
        if (!digit && (c != '.' || numbers.empty() || numbers.back() == '.'))
            break;
        numbers += c;
    }
    if (!numbers.empty() && numbers.back() == '.')
        numbers.pop_back();
    return numbers.empty() ? "1.0" : numbers;
}

bool HUTEnv::isFpgaCompilerProductFamily() {
    return env().product.fpgaCompilerFamily;
}

bool HUTEnv::isInternalTA() {
    return env().product.internal;
}

bool HUTEnv::isStandalone() {
    return env().product.standalone;
}

std::string HUTEnv::getFullProductStr() {
    return getProductName() + " v" + getProductVersion() + " (" + std::to_string(sizeof(void*) * 8) + "-bit)";
}

std::string HUTEnv::getFullBuildStr() {
    return "Build " CORVANE_BUILD_ID " of " CORVANE_BUILD_DATE;
}

std::string HUTEnv::getBuildDate() {
    return CORVANE_BUILD_DATE;
}

std::string HUTEnv::getBuildId() {
    return CORVANE_BUILD_ID;
}

std::string HUTEnv::getFullIPBuildStr() {
    return {};
}

std::string HUTEnv::getFullSharedDataBuildStr() {
    return {};
}

const std::vector<std::string>& HUTEnv::getCopyrightLines() {
    static const auto& lines =
        *new std::vector<std::string>{"Copyright (C) 2026 The Corvane developers.",
                                      "There is no warranty, to the extent that the law permits."};
    return lines;
}

bool HUTEnv::isTclDebug() {
    int debug = env().tcl_debug.load(std::memory_order_relaxed);
    if (debug < 0) {
        int unknown = -1;
        debug = is_yes(std::getenv("CORVANE_TCL_DEBUG"));
        if (!env().tcl_debug.compare_exchange_strong(unknown, debug))
            debug = unknown;
    }
    return debug > 0;
}

void HUTEnv::setTclDebug(bool on) {
    env().tcl_debug = on;
}

bool HUTEnv::getRegressMode() {
    return env().regress.load(std::memory_order_relaxed);
}

void HUTEnv::setRegressMode(bool on) {
    env().regress = on;
}

std::string HUTEnv::getTimeStamp() {
    // Not strftime: its names would follow the user's locale, and logs are compared and searched by scripts.
    constexpr std::array days{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    constexpr std::array months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    char text[64];
    std::snprintf(text, sizeof text, "%s %s %02d %02d:%02d:%02d %d", days[local.tm_wday % 7],
                  months[local.tm_mon % 12], local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
                  local.tm_year + 1900);
    return text;
}

int HUTEnv::getPid() {
    return ::getpid();
}

std::string HUTEnv::getUserName() {
    std::vector<char> space(4096);
    passwd entry{}, *found = nullptr;
    while (::getpwuid_r(::geteuid(), &entry, space.data(), space.size(), &found) == ERANGE)
        space.resize(space.size() * 2);
    return found ? found->pw_name : std::to_string(::geteuid());
}

std::string HUTEnv::getPWD() {
    const std::unique_ptr<char, decltype(&std::free)> path(::getcwd(nullptr, 0), &std::free);
    return path ? path.get() : "";
}

std::string HUTEnv::getHostName() {
    char name[256];
    if (::gethostname(name, sizeof name) != 0)
        return "localhost";
    name[sizeof name - 1] = '\0';
    return name;
}

std::string HUTEnv::getCmdline() {
    return joined(cmdline_words());
}

std::string HUTEnv::getShortCmdline() {
    std::vector<std::string> words = cmdline_words();
    if (!words.empty())
        words.front() = HUTPathUtils::fileName(words.front());
    return joined(words);
}

void HUTEnv::setCmdline(std::vector<std::string> words) {
    const std::lock_guard lock(env().mutex);
    env().cmdline = std::move(words);
}

const char* HUTEnv::getEnv(const std::string& name) {
    return std::getenv(name.c_str());
}

std::string HUTEnv::getEnv(const std::string& name, const std::string& fallback) {
    const char* value = std::getenv(name.c_str());
    return value ? value : fallback;
}

std::string HUTEnv::getVEKTmpDir() {
    {
        const std::lock_guard lock(env().mutex);
        if (!env().tmp_dir.empty())
            return env().tmp_dir;
    }
    const char* given = std::getenv("TMPDIR");
    return given && HUTPathUtils::isWritableDirectory(given) ? HUTFile::getCanonicalName(given) : "/tmp";
}

void HUTEnv::setVEKTmpDir(const std::string& path) {
    if (!HUTPathUtils::isWritableDirectory(path))
        return post({warning_mask, "@17-5100@%s%s\n", {path, getVEKTmpDir()}, {}});
    std::string directory = HUTFile::getCanonicalName(path);
    const std::lock_guard lock(env().mutex);
    env().tmp_dir = std::move(directory);
}

std::string HUTEnv::getVEKAppDataDir() {
    if (std::string directory = absolute_from_env("TANDREL_LOCAL_USER_DATA"); !directory.empty())
        return directory;
    if (const std::string data = absolute_from_env("XDG_DATA_HOME"); !data.empty())
        return HUTPathUtils::join({data, "corvane"});
    const std::string home = absolute_from_env("HOME");
    return home.empty() ? home : HUTPathUtils::join({home, ".local/share/corvane"});
}

std::vector<std::string> HUTEnv::getOMUAppRootList() {
    const char* value = std::getenv("OMU_APPROOT");
    const std::string approot = value ? value : "";
    const std::lock_guard lock(env().mutex);
    if (env().roots.empty() || env().approot != approot) {
        env().roots = make_roots(approot);
        env().approot = approot;
    }
    return env().roots;
}

std::string HUTEnv::getOMUAppRoot(const std::string& relative) {
    for (std::string& root : getOMUAppRootList()) {
        if (relative.empty() || HUTPathUtils::exists(HUTPathUtils::join({root, relative})))
            return std::move(root);
    }
    return {};
}

std::string HUTEnv::getOMUDataDir(const std::string& relative) {
    for (const std::string& root : getOMUAppRootList()) {
        std::string data = HUTPathUtils::join({root, "data"});
        if (HUTPathUtils::isDirectory(data) &&
            (relative.empty() || HUTPathUtils::exists(HUTPathUtils::join({data, relative}))))
            return data;
    }
    return {};
}

void HUTEnv::setMessageSink(std::function<void(const HUTEnvMessage&)> new_sink) {
    auto shared = new_sink ? std::make_shared<const sink>(std::move(new_sink)) : nullptr;
    const std::lock_guard lock(env().mutex);
    env().message_sink = std::move(shared);
    if (!env().message_sink)
        env().sends_at_once = false;
}

void HUTEnv::post(HUTEnvMessage message) {
    std::shared_ptr<const sink> to;
    {
        const std::lock_guard lock(env().mutex);
        if (!env().sends_at_once) {
            env().pending.push_back(std::move(message));
            return;
        }
        to = env().message_sink;
    }
    (*to)(message);
}

void HUTEnv::issuePendingMesssages() {
    for (;;) {
        std::shared_ptr<const sink> to;
        std::vector<HUTEnvMessage> messages;
        {
            const std::lock_guard lock(env().mutex);
            to = env().message_sink;
            if (!to)
                return;
            messages.swap(env().pending);
            if (messages.empty()) {
                env().sends_at_once = true;
                return;
            }
        }
        for (const HUTEnvMessage& message : messages)
            (*to)(message);
    }
}

void HUTEnv::printHeader(bool copyright) {
    std::string text = getFullProductStr() + '\n' + getFullBuildStr() + '\n';
    if (copyright) {
        for (const std::string& line : getCopyrightLines())
            text += line + '\n';
    }
    std::shared_ptr<const sink> to;
    {
        const std::lock_guard lock(env().mutex);
        to = env().message_sink;
    }
    if (to) {
        (*to)({plain_text_mask, {}, {}, text});
    } else {
        std::fputs(text.c_str(), stdout);
        std::fflush(stdout);
    }
}

void HUTEnv::maybeAdjustLocaleSetting() {
    if (!std::setlocale(LC_ALL, "")) {
        std::string wanted;
        for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
            if (wanted.empty())
                wanted = getEnv(name, "");
        }
        std::setlocale(LC_ALL, "C.UTF-8");
        post({warning_mask, "@17-5101@%s\n", {wanted}, {}});
    } else if (std::strcmp(::nl_langinfo(CODESET), "ANSI_X3.4-1968") == 0) {
        // A bare environment means plain C, which cannot show a name with an umlaut.
        std::setlocale(LC_CTYPE, "C.UTF-8");
    }
    std::setlocale(LC_NUMERIC, "C");
}

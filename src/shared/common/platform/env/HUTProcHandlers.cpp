#include "platform/env/HUTProcHandlers.h"

#include "platform/env/HUTEnv.h"
#include "platform/env/HUTLogFileMgr.h"
#include "platform/env/detail/file_descriptor.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <execinfo.h>
#include <fcntl.h>
#include <iterator>
#include <mutex>
#include <string>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

namespace {

constexpr size_t command_bytes = 512;
constexpr size_t command_count = 20;

// One remembered command. A slot is in the hands of whoever swapped `busy` to true, so a writer that meets
// another one leaves its command out rather than wait.
struct command_slot {
    std::atomic<bool> busy{false};
    uint64_t number = 0; // 0 when nothing was recorded; the first command is 1
    size_t size = 0;
    bool cut = false;
    std::array<char, command_bytes> text;
};

// All that handlers read is of fixed place and set before they are installed. Never destroyed.
command_slot commands[command_count];
std::atomic<uint64_t> last_command{0};
char version_text[256];
char crash_prefix[128]; // "corvane_pid"
char fallback_dir[4096];
std::atomic<int> dying_thread{0};

// Collects text for one file in a handler, where neither streams nor printf are allowed.
class signal_writer {
public:
    explicit signal_writer(int fd) : fd_(fd) {}
    ~signal_writer() { flush(); }
    signal_writer(const signal_writer&) = delete;
    signal_writer& operator=(const signal_writer&) = delete;

    signal_writer& operator<<(std::string_view text) {
        while (!text.empty()) {
            const size_t n = std::min(text.size(), sizeof buffer_ - size_);
            std::memcpy(buffer_ + size_, text.data(), n);
            size_ += n;
            text.remove_prefix(n);
            if (size_ == sizeof buffer_)
                flush();
        }
        return *this;
    }

    signal_writer& number(uint64_t value, unsigned base = 10, int least_digits = 1) {
        char digits[24];
        char* at = digits + sizeof digits;
        for (; value > 0 || least_digits > 0; value /= base, --least_digits)
            *--at = "0123456789abcdef"[value % base];
        return *this << std::string_view(at, static_cast<size_t>(digits + sizeof digits - at));
    }

    void flush() {
        env_detail::write_all(fd_, {buffer_, size_});
        size_ = 0;
    }

private:
    const int fd_;
    size_t size_ = 0;
    char buffer_[1024];
};

const char* name_of(int signal) {
    switch (signal) {
    case SIGSEGV:
        return "SIGSEGV, an access to memory that is not there";
    case SIGBUS:
        return "SIGBUS, an access to memory that could not be carried out";
    case SIGFPE:
        return "SIGFPE, an arithmetic error";
    case SIGILL:
        return "SIGILL, an instruction that the processor does not have";
    case SIGABRT:
        return "SIGABRT, the program gave up by itself";
    default:
        return "unknown";
    }
}

void write_time(signal_writer& out) {
    using namespace std::chrono;
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const sys_seconds time{seconds(now.tv_sec)};
    const auto day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(time - day);
    out.number(static_cast<uint64_t>(static_cast<int>(date.year())), 10, 4) << "-";
    out.number(static_cast<unsigned>(date.month()), 10, 2) << "-";
    out.number(static_cast<unsigned>(date.day()), 10, 2) << " ";
    out.number(static_cast<uint64_t>(clock.hours().count()), 10, 2) << ":";
    out.number(static_cast<uint64_t>(clock.minutes().count()), 10, 2) << ":";
    out.number(static_cast<uint64_t>(clock.seconds().count()), 10, 2) << " UTC";
}

void write_commands(signal_writer& out) {
    out << "\nLast commands, the latest at the end:\n";
    const uint64_t last = last_command.load();
    bool any = false;
    for (uint64_t number = last > command_count ? last - command_count + 1 : 1; number <= last; ++number) {
        command_slot& slot = commands[number % command_count];
        if (slot.busy.exchange(true))
            continue;
        if (slot.number == number) {
            out << "  " << std::string_view(slot.text.data(), slot.size) << (slot.cut ? "...\n" : "\n");
            any = true;
        }
        slot.busy.store(false);
    }
    if (!any)
        out << "  none\n";
}

void write_report(int fd, int signal, const siginfo_t& info) {
    signal_writer out(fd);
    out << version_text << "\nProcess ID: ";
    out.number(static_cast<uint64_t>(::getpid())) << "\nTime: ";
    write_time(out);
    out << "\nSignal: ";
    out.number(static_cast<uint64_t>(signal)) << " (" << name_of(signal) << ")\n";
    if (info.si_code > 0) {
        out << "Address: 0x";
        out.number(reinterpret_cast<uintptr_t>(info.si_addr), 16) << "\n";
    } else {
        out << "Sent by process: ";
        out.number(static_cast<uint64_t>(info.si_pid)) << "\n";
    }
    write_commands(out);
    out << "\nStack:\n";
    out.flush();
    void* frames[128];
    ::backtrace_symbols_fd(frames, ::backtrace(frames, static_cast<int>(std::size(frames))), fd);
}

// The report's path in `path`; -1 when there is no place for it.
int open_report(const char* directory, char* path, size_t size) {
    // Only calls that are allowed in a handler: the path is put together by hand.
    size_t at = 0;
    auto add = [&](const char* text) {
        const size_t n = std::min(std::strlen(text), size - 1 - at);
        std::memcpy(path + at, text, n);
        at += n;
    };
    char digits[16];
    char* digit = digits + sizeof digits;
    *--digit = '\0';
    for (auto pid = static_cast<unsigned>(::getpid()); pid > 0; pid /= 10)
        *--digit = static_cast<char>('0' + pid % 10);
    add(directory);
    add("/");
    add(crash_prefix);
    add(digit);
    add(".crash");
    path[at] = '\0';
    // Made anew: a left-over of an earlier process with this number goes, a link laid in a shared directory
    // is not followed.
    ::unlink(path);
    return ::open(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644);
}

void end_with(int signal) {
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    ::sigaction(signal, &action, nullptr);
    ::raise(signal);
    sigset_t only;
    ::sigemptyset(&only);
    ::sigaddset(&only, signal);
    ::pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
}

void on_fatal(int signal, siginfo_t* info, void*) {
    // A second thread that is struck meanwhile waits for the end; a second fault within this handler is the
    // end.
    const int self = static_cast<int>(::syscall(SYS_gettid));
    int nobody = 0;
    if (!dying_thread.compare_exchange_strong(nobody, self)) {
        if (nobody != self) {
            for (;;)
                ::pause();
        }
        end_with(signal);
    }
    char path[8192];
    char directory[4096];
    int fd = -1;
    if (::getcwd(directory, sizeof directory))
        fd = open_report(directory, path, sizeof path);
    if (fd < 0)
        fd = open_report(fallback_dir, path, sizeof path);
    write_report(fd < 0 ? STDERR_FILENO : fd, signal, *info);
    HUTLogFileMgr::flushFromSignalHandler();
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
        signal_writer out(STDERR_FILENO);
        out << "Abnormal program termination (signal ";
        out.number(static_cast<uint64_t>(signal)) << "). A report is in \"" << path << "\".\n";
    }
    end_with(signal);
}

void on_end(int signal) {
    const int error = errno;
    HUTLogFileMgr::flushFromSignalHandler();
    end_with(signal);
    errno = error;
}

void copy_text(char* to, size_t size, const std::string& text) {
    const size_t n = std::min(text.size(), size - 1);
    std::memcpy(to, text.data(), n);
    to[n] = '\0';
}

void install(int signal, const struct sigaction& action) {
    struct sigaction old {};
    if (::sigaction(signal, nullptr, &old) == 0 && (old.sa_flags & SA_SIGINFO) == 0 &&
        old.sa_handler == SIG_IGN)
        return;
    ::sigaction(signal, &action, nullptr);
}

// The alternate stack of one thread.
class alt_stack {
public:
    alt_stack() {
        // Unwinding for the report needs far more than the system's least size.
        memory_ = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory_ == MAP_FAILED)
            return;
        stack_t stack{};
        stack.ss_sp = memory_;
        stack.ss_size = bytes;
        ::sigaltstack(&stack, nullptr);
    }
    ~alt_stack() {
        if (memory_ == MAP_FAILED)
            return;
        stack_t now{};
        if (::sigaltstack(nullptr, &now) == 0 && now.ss_sp == memory_) {
            stack_t none{};
            none.ss_flags = SS_DISABLE;
            ::sigaltstack(&none, nullptr);
        }
        ::munmap(memory_, bytes);
    }
    alt_stack(const alt_stack&) = delete;
    alt_stack& operator=(const alt_stack&) = delete;

private:
    static constexpr size_t bytes = 256 * 1024;
    void* memory_;
};

} // namespace

void HUTProcHandlers::installHandlers() {
    static std::once_flag once;
    std::call_once(once, [] {
        copy_text(version_text, sizeof version_text,
                  HUTEnv::getFullProductStr() + "\n" + HUTEnv::getFullBuildStr());
        copy_text(crash_prefix, sizeof crash_prefix, HUTEnv::getProgramName() + "_pid");
        copy_text(fallback_dir, sizeof fallback_dir, HUTEnv::getVEKTmpDir());
        // The first call loads the unwinder, which must not happen in a handler.
        void* frame[1];
        ::backtrace(frame, 1);
        installAltStack();

        struct sigaction fatal {};
        fatal.sa_sigaction = on_fatal;
        fatal.sa_flags = SA_SIGINFO | SA_ONSTACK;
        ::sigemptyset(&fatal.sa_mask);
        for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT})
            ::sigaction(signal, &fatal, nullptr);

        struct sigaction end {};
        end.sa_handler = on_end;
        end.sa_flags = SA_ONSTACK;
        ::sigemptyset(&end.sa_mask);
        for (const int signal : {SIGTERM, SIGHUP})
            install(signal, end);

        // Not ignored, since the programs that scripts start would inherit that.
        struct sigaction survive {};
        survive.sa_handler = [](int) {};
        survive.sa_flags = SA_ONSTACK | SA_RESTART;
        ::sigemptyset(&survive.sa_mask);
        install(SIGXFSZ, survive);
    });
}

void HUTProcHandlers::installAltStack() {
    static thread_local alt_stack stack;
}

void HUTProcHandlers::recordCommand(std::string_view command) noexcept {
    const uint64_t number = last_command.fetch_add(1) + 1;
    command_slot& slot = commands[number % command_count];
    if (slot.busy.exchange(true, std::memory_order_acquire))
        return;
    slot.number = number;
    slot.size = std::min(command.size(), slot.text.size());
    slot.cut = slot.size < command.size();
    std::memcpy(slot.text.data(), command.data(), slot.size);
    slot.busy.store(false, std::memory_order_release);
}

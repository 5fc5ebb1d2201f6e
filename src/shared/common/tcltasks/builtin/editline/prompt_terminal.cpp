#include "tcltasks/builtin/editline/prompt_terminal.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <cwctype>
#include <poll.h>
#include <string_view>
#include <tcl.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

#include "platform/taskcore/task_manager.h"
#include "platform/tcl/HTCTclWakeUp.h"
#include "tcltasks/builtin/editline/libedit_functions.h"

namespace HTCLibEdit::detail {

namespace {

constexpr std::string_view pasteEnd = "\033[201~";
// A terminal that is gone is ready and has nothing to read; an interrupt can make one look so, once.
constexpr int mostEmptyReads = 10;

prompt_terminal* current = nullptr;
volatile std::sig_atomic_t resized = 0;
volatile std::sig_atomic_t continued = 0;

// Makes characters of bytes in the encoding of the terminal; what is no character is left out.
class decoder {
public:
    // 1 with a character, 0 when more bytes are needed.
    int take(char byte, wchar_t* key) {
        const bool first = std::mbsinit(&m_state) != 0;
        switch (std::mbrtowc(key, &byte, 1, &m_state)) {
        case static_cast<size_t>(-1):
            m_state = {};
            return first ? 0 : take(byte, key); // it may begin the next one
        case static_cast<size_t>(-2):
            return 0;
        default:
            // The system takes longer ones for characters too, at which libedit ends the process.
            return static_cast<unsigned long>(*key) <= 0x10FFFF ? 1 : 0;
        }
    }

private:
    std::mbstate_t m_state{};
};

// libedit's own conversion stops at a NUL.
std::string encoded(std::wstring_view text) {
    std::string bytes;
    std::mbstate_t state{};
    for (const wchar_t c : text) {
        char piece[MB_LEN_MAX];
        const size_t size = std::wcrtomb(piece, c, &state);
        if (size != static_cast<size_t>(-1)) {
            bytes.append(piece, size);
        }
    }
    return bytes;
}

void flush(int channel) {
    if (Tcl_Channel out = Tcl_GetStdChannel(channel)) {
        Tcl_Flush(out);
    }
}

} // namespace

prompt_terminal::prompt_terminal(EditLine* el, prompt_function prompt) : m_el(el), m_prompt(prompt) {
    current = this;
    HTCTclWakeUp::descriptor();
    const auto& lib = libedit();
    lib.el_set(el, EL_GETCFN, readKey);
    lib.el_set(el, EL_ADDFN, "xtcl-paste", "Insert a pasted block as it is", paste);
    lib.el_set(el, EL_BIND, "\033[200~", "xtcl-paste", nullptr);
    m_canMarkPastes = canMoveUp();
    m_canBeginRow = m_canMarkPastes && hasFeature("am") && hasFeature("xn") && ::isatty(STDOUT_FILENO) == 1;

    struct sigaction action {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    ::sigemptyset(&action.sa_mask);
    ::sigaction(SIGWINCH, &action, &m_oldResize);
    ::sigaction(SIGCONT, &action, &m_oldContinue);
    vek::tcltasks::task_manager::setIdleInterruptHandler(interrupt);
}

prompt_terminal::~prompt_terminal() {
    markPastes(false);
    vek::tcltasks::task_manager::setIdleInterruptHandler(nullptr);
    ::sigaction(SIGCONT, &m_oldContinue, nullptr);
    ::sigaction(SIGWINCH, &m_oldResize, nullptr);
    current = nullptr;
}

bool prompt_terminal::read(std::string& line) {
    flush(TCL_STDOUT);
    flush(TCL_STDERR);
    resized = 0;
    continued = 0;
    el_resize(m_el);
    beginRow();
    markPastes(true);
    takeTerminal();
    // A command that another thread hands over may end the process.
    Tcl_CreateExitHandler(restore, this);
    HTCTclWakeUp::setAtPrompt(true);
    int count = 0;
    const wchar_t* const text = el_wgets(m_el, &count);
    HTCTclWakeUp::setAtPrompt(false);
    Tcl_DeleteExitHandler(restore, this);
    serveEvents(); // what came too late for the prompt comes before the command
    if (text) {
        markPastes(false);
    } else if (!m_interrupted) {
        // libedit does not ask for keys when it cannot set up the terminal.
        termios mode;
        m_gone = m_gone || ::tcgetattr(STDIN_FILENO, &mode) != 0 || ++m_emptyReads > mostEmptyReads;
    }
    line = text ? encoded({text, static_cast<size_t>(count)}) : std::string();
    return text != nullptr;
}

bool prompt_terminal::takeInterrupt() {
    return std::exchange(m_interrupted, false);
}

void prompt_terminal::interrupt() {
    if (current) {
        current->m_interrupted = true;
    }
}

void prompt_terminal::restore(void* terminal) {
    auto* self = static_cast<prompt_terminal*>(terminal);
    libedit().el_set(self->m_el, EL_PREP_TERM, 0);
    self->markPastes(false);
}

// While commands run, what is pasted goes to them as it is.
void prompt_terminal::markPastes(bool on) {
    if (m_canMarkPastes && std::exchange(m_marksPastes, on) != on) {
        write(on ? "\033[?2004h" : "\033[?2004l");
    }
}

void prompt_terminal::onSignal(int signal) {
    (signal == SIGCONT ? continued : resized) = 1;
    HTCTclWakeUp::notify();
}

int prompt_terminal::readKey(EditLine*, wchar_t* key) {
    return current->nextKey(key);
}

int prompt_terminal::nextKey(wchar_t* key) {
    decoder decode;
    markPastes(true);
    while (waitForInput()) {
        char byte;
        if (readBytes(&byte, 1) == 1 && decode.take(byte, key) == 1) {
            if (byte == '\r' || byte == '\n') {
                markPastes(false); // before the line end that libedit shows
            }
            return 1;
        }
    }
    return 0;
}

// True when there is something to read; false when the line is broken off.
bool prompt_terminal::waitForInput() {
    while (!m_interrupted && !m_gone) {
        pollfd ready[2] = {{STDIN_FILENO, POLLIN, 0}, {HTCTclWakeUp::descriptor(), POLLIN, 0}};
        if (::poll(ready, 2, -1) < 0) {
            continue;
        }
        if (ready[1].revents != 0) {
            serve();
        } else if (ready[0].revents != 0) {
            return true;
        }
    }
    return false;
}

// Gives the terminal to libedit, which would show the prompt first: what is typed in between would be echoed
// twice and cut off. A read does not wait, since an interrupt takes away what was there to read.
void prompt_terminal::takeTerminal() {
    libedit().el_set(m_el, EL_PREP_TERM, 1);
    termios mode;
    if (::tcgetattr(STDIN_FILENO, &mode) == 0) {
        mode.c_cc[VMIN] = 0;
        mode.c_cc[VTIME] = 0;
        ::tcsetattr(STDIN_FILENO, TCSADRAIN, &mode);
    }
}

// How many bytes there were, after waitForInput().
size_t prompt_terminal::readBytes(char* bytes, size_t count) {
    const ssize_t got = ::read(STDIN_FILENO, bytes, count);
    if (got > 0) {
        m_emptyReads = 0;
        return static_cast<size_t>(got);
    }
    if (got < 0) {
        m_gone = errno != EINTR && errno != EAGAIN;
    } else {
        m_gone = ++m_emptyReads > mostEmptyReads;
    }
    return 0;
}

// Does what other threads want of this one. Timers and files wait for a command that enters the event loop.
void prompt_terminal::serve() {
    HTCTclWakeUp::clear();
    if (Tcl_AsyncReady()) {
        Tcl_AsyncInvoke(nullptr, TCL_OK);
        if (m_interrupted) {
            leaveLine();
            return;
        }
    }
    if (continued) {
        continued = 0;
        libedit().el_set(m_el, EL_PREP_TERM, 0);
        takeTerminal();
    }
    if (resized) {
        resized = 0;
        el_resize(m_el);
    }
    eraseLine();
    serveEvents();
    // What follows at once shares the redraw; a key, a signal or a twentieth of a second end the wait for it.
    const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(50);
    while (std::chrono::steady_clock::now() < until && nextEvent()) {
        serveEvents();
    }
    beginRow();
    libedit().el_set(m_el, EL_REFRESH);
}

// True when another thread wants something within a millisecond, and nothing else is to be done. A signal
// stays announced for the next wait.
bool prompt_terminal::nextEvent() {
    pollfd ready[2] = {{STDIN_FILENO, POLLIN, 0}, {HTCTclWakeUp::descriptor(), POLLIN, 0}};
    if (::poll(ready, 2, 1) <= 0 || ready[0].revents != 0) {
        return false;
    }
    HTCTclWakeUp::clear();
    if (Tcl_AsyncReady() || resized || continued) {
        HTCTclWakeUp::notify();
        return false;
    }
    return true;
}

void prompt_terminal::serveEvents() {
    while (Tcl_ServiceEvent(TCL_WINDOW_EVENTS) != 0) {
    }
    flush(TCL_STDOUT);
    flush(TCL_STDERR);
}

void prompt_terminal::write(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

int prompt_terminal::columns() const {
    int count = 0;
    libedit().el_get(m_el, EL_GETTC, "co", &count);
    return count > 0 ? count : 80;
}

bool prompt_terminal::canMoveUp() const {
    char* up = nullptr;
    return libedit().el_get(m_el, EL_GETTC, "up", &up) == 0 && up && *up;
}

bool prompt_terminal::hasFeature(const char* name) const {
    char* answer = nullptr;
    return libedit().el_get(m_el, EL_GETTC, name, &answer) == 0 && answer &&
           std::string_view(answer) == "yes";
}

// Takes the cursor to the next row when output without a line end has left it within one: a row of blanks
// goes over the end of the row then, and is not shown. libedit takes it to be at the beginning.
void prompt_terminal::beginRow() {
    if (m_canBeginRow) {
        write(std::string(static_cast<size_t>(columns()), ' ') + "\r\033[K");
    }
}

// Where libedit shows the character at `end`, from the beginning of the prompt on.
prompt_terminal::place prompt_terminal::placeOf(const wchar_t* end) const {
    const int width = columns();
    place at;
    const auto add = [&](int cells) {
        if (at.column + cells > width) {
            ++at.row;
            at.column = 0;
        }
        at.column += cells;
        if (at.column >= width) {
            ++at.row;
            at.column = 0;
        }
    };
    const auto show = [&](wchar_t c) {
        if (c == L'\n') {
            ++at.row;
            at.column = 0;
        } else if (c == L'\t') {
            do {
                add(1);
            } while (at.column % 8 != 0);
        } else if (std::iswcntrl(static_cast<wint_t>(c))) {
            add(1);
            add(1);
        } else if (!std::iswprint(static_cast<wint_t>(c))) {
            for (int i = 0; i < (c > 0xffff ? 8 : 7); ++i) { // shown as its number
                add(1);
            }
        } else {
            add(std::max(::wcwidth(c), 0));
        }
    };
    decoder decode;
    for (const char* byte = m_prompt(m_el); *byte != '\0'; ++byte) {
        wchar_t c;
        if (decode.take(*byte, &c) == 1) {
            show(c);
        }
    }
    for (const wchar_t* c = el_wline(m_el)->buffer; c < end; ++c) {
        show(*c);
    }
    return at;
}

// Takes prompt and line off the screen, so that other output can stand in their place.
void prompt_terminal::eraseLine() {
    if (!canMoveUp()) {
        write("\r\n");
        return;
    }
    int rows = 0;
    libedit().el_get(m_el, EL_GETTC, "li", &rows);
    const int up = std::min(placeOf(el_wline(m_el)->cursor).row, std::max(rows, 1) - 1);
    // Some terminals keep, as part of what has scrolled away, what is cleared from the first row on.
    write((up > 0 ? "\r\033[" + std::to_string(up) + "A" : std::string("\r")) +
          "\033[K\0337\033[B\033[J\0338");
}

void prompt_terminal::goToLastRow() {
    const LineInfoW* line = el_wline(m_el);
    const int below = placeOf(line->lastchar).row - placeOf(line->cursor).row;
    if (below > 0 && canMoveUp()) {
        write("\033[" + std::to_string(below) + "B");
    }
}

void prompt_terminal::leaveLine() {
    goToLastRow();
    write("\r\n");
}

bool prompt_terminal::takeLostInterrupt() {
    if (!current || !vek::tcltasks::task_manager::isTaskCanceled()) {
        return false;
    }
    // One that is on its way comes as any other does.
    pollfd arrived = {HTCTclWakeUp::descriptor(), POLLIN, 0};
    ::poll(&arrived, 1, 100);
    if (Tcl_AsyncReady()) {
        return false;
    }
    current->leaveLine();
    current->m_moved = false;
    current->m_interrupted = true;
    return true;
}

void prompt_terminal::showBelow(const std::string& text) {
    flush(TCL_STDOUT);
    if (current) {
        current->goToLastRow();
        current->m_moved = true;
    }
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

bool prompt_terminal::redrawIfMoved() {
    if (!current || !std::exchange(current->m_moved, false)) {
        return false;
    }
    libedit().el_set(current->m_el, EL_REFRESH);
    return true;
}

unsigned char prompt_terminal::paste(EditLine* el, int) {
    const std::wstring text = current->readPasted();
    if (current->m_interrupted || current->m_gone) {
        return CC_EOF;
    }
    if (!text.empty()) {
        el_winsertstr(el, text.c_str());
    }
    return CC_REFRESH;
}

// What the terminal sends up to the end of the pasted block.
std::wstring prompt_terminal::readPasted() {
    std::string bytes;
    while (!bytes.ends_with(pasteEnd)) {
        // No byte behind the end is taken: it may be meant for the command that is run next.
        size_t begun = std::min(bytes.size(), pasteEnd.size() - 1);
        while (!bytes.ends_with(pasteEnd.substr(0, begun))) {
            --begun;
        }
        char piece[pasteEnd.size()];
        if (!waitForInput()) {
            return {};
        }
        bytes.append(piece, readBytes(piece, pasteEnd.size() - begun));
    }
    bytes.resize(bytes.size() - pasteEnd.size());
    std::wstring text;
    decoder decode;
    for (size_t i = 0; i < bytes.size(); ++i) {
        wchar_t c;
        if (decode.take(bytes[i], &c) != 1 || c == L'\0') {
            continue;
        }
        if (c == L'\r') { // the key for the end of a line
            if (i + 1 < bytes.size() && bytes[i + 1] == '\n') {
                continue;
            }
            c = L'\n';
        }
        text += c;
    }
    return text;
}

} // namespace HTCLibEdit::detail

#pragma once

#include <csignal>
#include <histedit.h>
#include <string>

namespace HTCLibEdit::detail {

/// The terminal while commands are typed: gives libedit its keys one by one and serves, in between, what
/// other threads hand to the interpreter's, and changes of the window; the line is drawn again after that. A
/// pasted block becomes part of the line as it is. One at a time; interpreter's thread.
class prompt_terminal {
public:
    /// How the prompt reads at the moment, for the place of the line on the screen.
    using prompt_function = char* (*)(EditLine*);

    prompt_terminal(EditLine* el, prompt_function prompt);
    ~prompt_terminal();
    prompt_terminal(const prompt_terminal&) = delete;
    prompt_terminal& operator=(const prompt_terminal&) = delete;

    /// Reads a line, with its line end, in the encoding of the system. False when there is none: see below
    /// for why.
    bool read(std::string& line);
    /// The user broke the line off. True once.
    bool takeInterrupt();
    /// There is no terminal any more, and never will be again.
    bool isGone() const { return m_gone; }
    /// Lets read() give up as if the user had broken the line off.
    static void interrupt();
    /// For a key that evaluates, as a command of its own: an interrupt meanwhile stopped that, and breaks the
    /// line off as well. True if there was one.
    static bool takeLostInterrupt();
    /// Writes below the line; redrawIfMoved() then draws the line again and is true.
    static void showBelow(const std::string& text);
    static bool redrawIfMoved();

private:
    struct place {
        int row = 0;
        int column = 0;
    };

    static int readKey(EditLine* el, wchar_t* key);
    static unsigned char paste(EditLine* el, int key);
    static void onSignal(int signal);
    static void restore(void* terminal);

    int nextKey(wchar_t* key);
    bool waitForInput();
    void takeTerminal();
    size_t readBytes(char* bytes, size_t count);
    void serve();
    void serveEvents();
    static bool nextEvent();
    void eraseLine();
    void goToLastRow();
    void leaveLine();
    void write(const std::string& text);
    void markPastes(bool on);
    place placeOf(const wchar_t* end) const;
    int columns() const;
    bool canMoveUp() const;
    bool hasFeature(const char* name) const;
    void beginRow();
    std::wstring readPasted();

    EditLine* m_el;
    prompt_function m_prompt;
    bool m_canMarkPastes = false;
    bool m_canBeginRow = false;
    bool m_marksPastes = false;
    bool m_interrupted = false;
    bool m_moved = false; ///< what was written took the cursor away from the line
    bool m_gone = false;
    int m_emptyReads = 0;
    struct sigaction m_oldResize {};
    struct sigaction m_oldContinue {};
};

} // namespace HTCLibEdit::detail

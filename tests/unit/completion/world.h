#pragma once

#include <filesystem>
#include <string>

#include "../support/ConsoleTest.h"
#include "../support/TempDir.h"
#include "tcltasks/builtin/completion/complete.h"

/// A session in a directory of its own, with commands, namespaces, variables and files whose names all begin
/// with "wk", so that what Tcl and the product bring along does not come into the results.
class Completion : public ConsoleTest {
protected:
    Completion();
    ~Completion() override;

    /// What Tab does to a line: the outcome, the line with the cursor as "^", and the listing, with a tab
    /// between them and nothing at the end that is empty.
    std::string tab(const std::string& line);
    /// The line after Tab, with the cursor as "^", for a line that Tab finishes.
    std::string finished(const std::string& line);
    /// The listing below a line.
    std::string listed(const std::string& line);

private:
    std::filesystem::path m_before;
    TempDir m_directory;
};

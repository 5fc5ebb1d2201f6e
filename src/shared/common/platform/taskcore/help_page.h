#pragma once

#include <string>
#include <string_view>

namespace vek::tcltasks {

/// What people write of a command, beside what its declaration says. A page is a text file of sections, each
/// below its heading at column 0:
///
///     DESCRIPTION
///       Text, indented by two blanks.
///
///     EXAMPLES
///       % get_param general.maxThreads
///       8
///
///     SEE ALSO
///       set_param, list_param
///
/// Any thread.
class help_page {
public:
    /// Where the page of a command lies in an application root: "doc/eng/cmd/get_param",
    /// "doc/eng/cmd/debug__list_class". The name may have a namespace; the public one is left out.
    static std::string place(std::string_view command);

    /// Bytes of a file that are looked at; a page is far smaller.
    static constexpr size_t most_bytes = size_t(1) << 20;

    /// The page in a file. One that is missing, cannot be read or is no page gives an empty one.
    static help_page read(const std::string& path);
    /// The page in a text. What stands above the first heading is left out; characters that would steer a
    /// terminal are replaced.
    static help_page parse(std::string_view text);

    /// The sections, their lines as they stand in the page, without blank lines at both ends; empty for one
    /// that the page does not have. A section that is not empty ends in a newline.
    const std::string& description() const { return m_description; }
    const std::string& examples() const { return m_examples; }
    const std::string& see_also() const { return m_seeAlso; }
    bool empty() const { return m_description.empty() && m_examples.empty() && m_seeAlso.empty(); }

    /// The name of a command as users type it: without leading colons and without the public namespace.
    static std::string typed_name(std::string_view command);

private:
    std::string m_description;
    std::string m_examples;
    std::string m_seeAlso;
};

} // namespace vek::tcltasks

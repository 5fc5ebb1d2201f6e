#pragma once

#include <string>

/// How texts are set into lines. Widths are in columns of a terminal, texts are UTF-8. Any thread.
namespace HTCHelp::detail::format {

/// Wraps each line of a text at blanks and tabs; the lines that are there stay lines. A word longer than the
/// width has a line of its own. With a width of 9 or less the text is returned unchanged.
std::string formatText(const std::string& text, int width);

/// Wraps the description of a topic. A single tab in it is taken out and marks where all lines but the first
/// begin; a description with several tabs stays as it stands. Lines break at a blank, unless the last one
/// leaves half of the width free: then within a word.
std::string wrapDescription(std::string text, int width);

} // namespace HTCHelp::detail::format

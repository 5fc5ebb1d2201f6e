#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// A table for a text report:
///
///     Name      Value
///     --------  -----
///     fanout       16
///     ref_name  LUT6
///
/// Columns are as wide as their widest cell. When the table is wider than its limit the widest columns are
/// narrowed and their cells wrapped at blanks. Cells are UTF-8 and are measured by what a terminal shows; a
/// newline in a cell starts a further line of it, tabs become blanks, other control characters are shown as
/// \xNN. Not for use by several threads at once.
class HUTTextTable {
public:
    enum class Align { left, right };

    /// `width` is the limit in columns; 0 means no limit.
    explicit HUTTextTable(size_t width = 80) : width_(width) {}

    void setHeaders(std::vector<std::string> headers) { headers_ = std::move(headers); }

    /// Columns are counted from 0; left is the default.
    void setAlign(size_t column, Align align);

    /// Lets the last column, a longer text, go below its row, indented, when the table would be wider than
    /// its limit otherwise:
    ///
    ///     Name                Value
    ///         Description
    ///     ------------------  -----
    ///     general.maxThreads      8
    ///         Most threads that a command runs at the same time.
    void setFoldLastColumn(bool fold) { foldLast_ = fold; }

    /// Rows may be shorter or longer than the headers; what is missing is blank.
    void addRow(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }

    size_t numRows() const { return rows_.size(); }

    /// The table, each line ended by a newline and without blanks at its end. `separator` puts a line of
    /// dashes below the headers. Empty when there are neither headers nor rows.
    std::string getAsString(bool separator = true) const;

    /// Writes getAsString(true).
    void print(std::ostream& out) const;

private:
    size_t width_;
    bool foldLast_ = false;
    std::vector<std::string> headers_;
    std::vector<Align> align_;
    std::vector<std::vector<std::string>> rows_;
};

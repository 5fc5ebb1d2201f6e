#include "platform/env/HUTTextTable.h"

#include "platform/env/HSTStringUtils.h"
#include "platform/env/detail/utf8.h"

#include <algorithm>
#include <cstdio>
#include <ostream>

using env_detail::utf8_at;

namespace {

constexpr size_t gap = 2;
constexpr size_t indent = 4;    // of a column that stands below its row
constexpr size_t narrowest = 8; // a wrapped column narrower than this cannot be read

// The cell's lines with control characters made visible.
std::vector<std::string> lines_of(const std::string& cell) {
    std::vector<std::string> lines(1);
    for (const char c : cell) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\n') {
            lines.emplace_back();
        } else if (c == '\t') {
            lines.back() += ' ';
        } else if (byte < 0x20 || byte == 0x7F) {
            char text[8];
            std::snprintf(text, sizeof text, "\\x%02X", byte);
            lines.back() += text;
        } else {
            lines.back() += c;
        }
    }
    if (lines.size() > 1 && lines.back().empty())
        lines.pop_back();
    return lines;
}

// Cuts a line into pieces of at most `width` columns: at the last blank that fits, or within a word that is
// longer.
void wrap(std::string_view line, size_t width, std::vector<std::string>& pieces) {
    size_t start = 0, blank = std::string_view::npos, columns = 0;
    for (size_t i = 0; i < line.size();) {
        const auto c = utf8_at(line, i);
        const size_t wide = env_detail::columns_of(c.code);
        if (columns + wide > width && i > start) {
            if (line[i] == ' ') {
                pieces.emplace_back(line.substr(start, i - start));
                start = i + 1;
            } else if (blank != std::string_view::npos) {
                pieces.emplace_back(line.substr(start, blank - start));
                start = blank + 1;
            } else {
                pieces.emplace_back(line.substr(start, i - start));
                start = i;
            }
            i = start;
            blank = std::string_view::npos;
            columns = 0;
            continue;
        }
        if (c.code == U' ' && i > start)
            blank = i;
        columns += wide;
        i += c.size;
    }
    pieces.emplace_back(line.substr(start));
}

using cell_lines = std::vector<std::string>;
using row_lines = std::vector<cell_lines>;

row_lines row_of(const std::vector<std::string>& cells, std::vector<size_t>& widths) {
    row_lines row;
    for (size_t i = 0; i < cells.size(); ++i) {
        row.push_back(lines_of(cells[i]));
        for (const std::string& line : row.back())
            widths[i] = std::max(widths[i], HSTStringUtils::display_width(line));
    }
    return row;
}

size_t total_width(const std::vector<size_t>& widths) {
    size_t sum = gap * (widths.size() - 1);
    for (const size_t w : widths)
        sum += w;
    return sum;
}

// Lowers the widest columns to one common width, so that all fit, as far as they stay readable.
void fit(std::vector<size_t>& widths, size_t limit) {
    const size_t gaps = gap * (widths.size() - 1);
    const size_t room = limit > gaps ? limit - gaps : 0;
    auto total = [&](size_t cap) {
        size_t sum = 0;
        for (size_t w : widths)
            sum += std::min(w, cap);
        return sum;
    };
    size_t low = narrowest, high = *std::max_element(widths.begin(), widths.end());
    if (high <= low || total(high) <= room)
        return;
    while (low < high) {
        const size_t middle = low + (high - low + 1) / 2;
        if (total(middle) <= room)
            low = middle;
        else
            high = middle - 1;
    }
    size_t spare = room > total(low) ? room - total(low) : 0;
    for (size_t& w : widths) {
        if (w > low) {
            w = low + (spare > 0);
            spare -= spare > 0;
        }
    }
}

} // namespace

void HUTTextTable::setAlign(size_t column, Align align) {
    if (align_.size() <= column)
        align_.resize(column + 1, Align::left);
    align_[column] = align;
}

std::string HUTTextTable::getAsString(bool separator) const {
    size_t columns = headers_.size();
    for (const auto& row : rows_)
        columns = std::max(columns, row.size());
    if (columns == 0)
        return {};

    std::vector<size_t> widths(columns, 0);
    const row_lines header = row_of(headers_, widths);
    std::vector<row_lines> rows;
    rows.reserve(rows_.size());
    for (const auto& row : rows_)
        rows.push_back(row_of(row, widths));
    const bool folded = foldLast_ && columns > 1 && width_ > 0 && total_width(widths) > width_;
    if (folded)
        widths.pop_back();
    if (width_ > 0)
        fit(widths, width_);

    std::string out;
    auto end_line = [&] {
        while (!out.empty() && out.back() == ' ')
            out.pop_back();
        out += '\n';
    };
    auto add_row = [&](const row_lines& row) {
        const size_t beside = std::min(row.size(), widths.size());
        row_lines pieces(beside);
        size_t height = 1;
        for (size_t i = 0; i < beside; ++i) {
            for (const std::string& line : row[i])
                wrap(line, std::max<size_t>(widths[i], 1), pieces[i]);
            height = std::max(height, pieces[i].size());
        }
        for (size_t k = 0; k < height; ++k) {
            for (size_t i = 0; i < beside; ++i) {
                const std::string_view piece = k < pieces[i].size() ? std::string_view(pieces[i][k]) : "";
                const size_t used = HSTStringUtils::display_width(piece);
                const size_t pad = widths[i] > used ? widths[i] - used : 0;
                const bool right = i < align_.size() && align_[i] == Align::right;
                if (i > 0)
                    out.append(gap, ' ');
                out.append(right ? pad : 0, ' ').append(piece).append(right ? 0 : pad, ' ');
            }
            end_line();
        }
        if (row.size() <= beside || row.back() == cell_lines{""})
            return;
        cell_lines below;
        for (const std::string& line : row.back())
            wrap(line, std::max(width_ - std::min(width_, indent), narrowest), below);
        for (const std::string& line : below) {
            out.append(indent, ' ').append(line);
            end_line();
        }
    };
    if (!headers_.empty()) {
        add_row(header);
        if (separator) {
            for (size_t i = 0; i < widths.size(); ++i) {
                out.append(i > 0 ? gap : 0, ' ');
                out.append(widths[i], '-');
            }
            end_line();
        }
    }
    for (const row_lines& row : rows)
        add_row(row);
    return out;
}

void HUTTextTable::print(std::ostream& out) const {
    out << getAsString(true);
}

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ravik::cli {

/// Text that may hold anything, made safe to print: control characters and bytes that are no UTF-8 are written out,
/// so that a command line cannot steer the terminal.
std::string printable(std::string_view text);

/// The same for text of several lines, which stay apart.
std::string printableLines(std::string_view text);

/// JSON with what a terminal would obey written as \uXXXX, which is the same value; line feeds and tabs between the
/// values stay. Bytes that are no UTF-8 become U+FFFD.
std::string printableJson(std::string_view json);

/// Cells that the text takes up in a terminal.
std::size_t cells(std::string_view text);

/// Rows of aligned text.
class Table {
public:
    enum class Align { left, right };

    explicit Table(std::vector<Align> columns) : m_columns(std::move(columns)) {}
    /// Every cell is made printable.
    void add(std::vector<std::string> row);
    /// The rows, two blanks between columns; the last column is cut to the width with an ellipsis, to 8 cells
    /// where that leaves less; 0 leaves it whole.
    std::string render(std::size_t width) const;

private:
    std::vector<Align> m_columns;
    std::vector<std::vector<std::string>> m_rows;
};

}  // namespace ravik::cli

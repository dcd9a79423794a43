/// Columns of text on a terminal.
#pragma once

#include <string>
#include <vector>

/// Left-aligned columns, each as wide as its longest cell, two spaces apart.
class TextTable {
public:
    /// The first row. Rows have as many cells as it, all UTF-8; control characters become "?".
    explicit TextTable(const std::vector<std::string> &headings) { AddRow(headings); }
    void AddRow(const std::vector<std::string> &cells);
    /// All rows, each with a line end and without trailing spaces.
    [[nodiscard]] std::string Text() const;

private:
    std::vector<std::vector<std::string>> mRows;
    std::vector<size_t> mWidths;
};

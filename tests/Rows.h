// Tables of tests as rows of text.
#pragma once

#include <sstream>
#include <string>
#include <vector>

namespace orvo {

/// The cells of a row, "a|b|c".
inline std::vector<std::string> Cells(const std::string& row) {
    std::vector<std::string> cells;
    std::istringstream in(row + "|");
    for (std::string cell; std::getline(in, cell, '|');) cells.push_back(cell);
    return cells;
}

}  // namespace orvo

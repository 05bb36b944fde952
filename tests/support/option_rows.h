// Command lines and what is wrong with them.
#pragma once

#include "support/words.h"

#include <fstream>
#include <string>
#include <vector>

namespace vantor {

struct OptionRow {
    std::string arguments; ///< parted by blanks
    std::string complaint; ///< the message; empty when nothing is wrong
};

inline std::vector<OptionRow> OptionRows()
{
    std::vector<OptionRow> rows;
    std::ifstream file(VANTOR_SOURCE_DIRECTORY "/tests/run/options/command_lines.tsv", std::ios::binary);
    for (OptionRow row; std::getline(file, row.arguments, '\t') && std::getline(file, row.complaint);) {
        rows.push_back(row);
    }
    return rows;
}

} // namespace vantor

#include "Complaints.h"

#include <algorithm>

std::string placeInWords(const CellPosition& cell)
{
    return "column " + std::to_string(cell.column) + ", row " + std::to_string(cell.row);
}

void Complaints::add(const CellPosition& cell, const std::string& reason, const std::string& text)
{
    const auto known = std::find_if(kinds.begin(), kinds.end(),
                                    [&](const Kind& kind) { return kind.reason == reason; });
    if (known == kinds.end())
        kinds.push_back({reason, text, cell, 1});
    else
        ++known->count;
}

void Complaints::appendTo(std::vector<std::string>& lines) const
{
    for (const Kind& kind : kinds) {
        const std::string others =
            kind.count > 1 ? ", and " + std::to_string(kind.count - 1) + " more" : std::string();
        lines.push_back(placeInWords(kind.first) + others + ": " + kind.text);
    }
}

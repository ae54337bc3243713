#pragma once

#include "LevelMap.h"

#include <string>
#include <vector>

/// "column 3, row 7".
std::string placeInWords(const CellPosition& cell);

/// What is wrong with single cells: what is wrong in the same way becomes one line, however often.
class Complaints
{
public:
    /// `reason` tells which complaints are of one kind; of those the first one's text is told.
    void add(const CellPosition& cell, const std::string& reason, const std::string& text);

    /// One line for each kind, in the order in which they came up first.
    void appendTo(std::vector<std::string>& lines) const;

private:
    struct Kind
    {
        std::string reason;
        std::string text;
        CellPosition first;
        int count;
    };

    std::vector<Kind> kinds;
};

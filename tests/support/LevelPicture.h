#pragma once

#include "LevelColor.h"

#include <QImage>

#include <initializer_list>
#include <string>
#include <vector>

namespace cells {
constexpr Cell hole{0, 0, 0};
constexpr Cell floor{90, 100, 73};   // flat, 0.5 high
constexpr Cell wall{90, 100, 86};    // flat, 1.0 high
constexpr Cell tower{90, 100, 100};  // flat, 2.0 high
constexpr Cell start{135, 100, 73};
constexpr Cell required{135, 80, 73};
constexpr Cell optional{135, 70, 73};
constexpr Cell goal{135, 50, 73};
}  // namespace cells

/// A colour that decodes to the cell. Ends the program at a cell that eight bits a channel cannot
/// hold, as a dark one of a fine saturation.
QRgb colorOf(const Cell& cell);

/// A level picture drawn in a test.
class LevelPicture
{
public:
    LevelPicture(int width, int height, const Cell& background = cells::hole);

    /// One character a cell: ' ' hole, '.' floor, '#' wall, 'T' tower, 'S' start, 'R' and 'O'
    /// required and optional flag, 'G' goal. Rows are of one length.
    LevelPicture(std::initializer_list<std::string> rows);
    explicit LevelPicture(const std::vector<std::string>& rows);

    LevelPicture& set(int column, int row, const Cell& cell);

    const QImage& image() const { return picture; }

private:
    void paint(const std::vector<std::string>& rows);

    QImage picture;
};

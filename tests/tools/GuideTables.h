#pragma once

#include <QStringList>

#include <vector>

/// All lines of a file of the tree that match the pattern, as their captured texts.
std::vector<QStringList> rowsOf(const char* file, const char* pattern);

/// A file of the tree.
QString textOf(const char* file);

/// A row of the guide's tables of blocks: words, hue, saturation, value, red, green, blue, and for
/// an option the ends of its band.
constexpr const char* guideRow =
    R"(^\| ([^|]+) \| (\d+) \| (\d+) \| (\d+) \| (\d+), (\d+), (\d+) \|(?: (\d+) to (\d+) \|)?$)";

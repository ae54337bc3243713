#include "BlockPalette.h"

#include "GuideTables.h"
#include "level/LevelPixel.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>

namespace {

constexpr int lowFloor = 73;

std::map<std::string, QRgb> paletteByName()
{
    std::map<std::string, QRgb> colors;
    for (const Swatch& swatch : blockPalette(lowFloor))
        colors[swatch.name] = swatch.color;
    return colors;
}

}  // namespace

TEST(BlockPalette, HasTheBlocksAndColoursOfTheGuideAndNoOthers)
{
    const std::map<std::string, QRgb> colors = paletteByName();
    const std::vector<QStringList> rows = rowsOf("docs/levels.md", guideRow);
    EXPECT_EQ(colors.size(), rows.size());
    for (const QStringList& row : rows) {
        const bool isHeight = row[1].endsWith(" high");
        const std::string name = ((isHeight ? "floor or wall, " : "") + row[1]).toStdString();
        SCOPED_TRACE(name);
        ASSERT_TRUE(colors.count(name));
        EXPECT_EQ(colors.at(name), qRgb(row[5].toInt(), row[6].toInt(), row[7].toInt()));
    }
}

TEST(BlockPalette, GivesEveryOptionTheHeightThatIsWanted)
{
    for (const int value : {73, 86, 95, 100}) {
        for (const Swatch& swatch : blockPalette(value)) {
            const LevelPixel pixel = LevelPixel::decode(swatch.color);
            if (blockKindOfHue(pixel.hue) != BlockKind::Standard)
                EXPECT_EQ(pixel.value, value) << swatch.name;
        }
    }
}

TEST(BlockPalette, IsWrittenAsPaintProgramsReadIt)
{
    std::ostringstream out;
    writePalette({{"start", qRgb(0, 186, 47)}}, out);
    EXPECT_EQ(out.str(),
              "GIMP Palette\nName: Rollix\nColumns: 4\n#\n0 0 0\thole\n0 186 47\tstart\n");
}

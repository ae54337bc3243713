// The board's blocks: what the level picture makes of it.
#include "base/Say.h"
#include "level/BlockFactory.h"
#include "level/BlockShape.h"
#include "level/Board.h"
#include "level/BoardMesh.h"
#include "level/Level.h"
#include "level/LevelPixel.h"

#include <QImage>

#include <cmath>
#include <string>

namespace {

/// The pixels of a picture whose blocks would need a body and have none.
class BodilessPixels
{
public:
    void add(int column, int row, const LevelPixel& pixel)
    {
        if (count++ == 0)
            first = {column, row, pixel};
    }

    /// One line on all of them, if there are any.
    void report(const std::string& file) const
    {
        if (count == 0)
            return;
        const LevelPixel& pixel = first.pixel;
        say("I cannot build ", count, " of the blocks of ", file, ": a value under ",
            firstBodyValue, " gives no body. The first is at column ", first.column, ", row ",
            first.row, ": hue ", pixel.hue, ", saturation ", pixel.saturation, ", value ",
            pixel.value, ", alpha ", pixel.alpha, ".");
    }

private:
    struct Place
    {
        int column;
        int row;
        LevelPixel pixel;
    };

    int count = 0;
    Place first{};
};

}  // namespace

void Board::createBlocks(const QImage& image)
{
    const int width = image.width();
    const int height = image.height();
    BodilessPixels bodiless;
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            const LevelPixel pixel = LevelPixel::decode(image.pixel(column, row));
            if (pixel.value == 0)
                continue;
            BlockGroup& group = groups[pixel.alpha];
            const BlockKind kind = blockKindOfHue(pixel.hue);
            const BlockFactory create = blockFactoryOf(kind);
            if (!create)
                continue;
            if (hasOwnBody(kind) && pixel.value < firstBodyValue) {
                bodiless.add(column, row, pixel);
                continue;
            }
            const float x = (float(column) - float(width) * 0.5f) + 0.5f;
            const float y = (float(height) * 0.5f - float(row)) - 0.5f;
            Block* block = create(*level, x, y, pixel.saturation, pixel.value, group);
            blocks.push_back(block);
            group.push_back(block);
        }
    }
    bodiless.report(level->pictureFile);
}

void Board::mergeStaticBlocks(int columns, int rows)
{
    // What the static flat blocks fill from edge to edge, by cell.
    std::vector<float> filled(std::size_t(columns) * std::size_t(rows), 0.0f);
    const auto cellIndex = [&](float x, float y) -> std::ptrdiff_t {
        const int column = int(std::floor(x + float(columns) * 0.5f));
        const int row = int(std::floor(float(rows) * 0.5f - y));
        const bool inside = column >= 0 && column < columns && row >= 0 && row < rows;
        return inside ? std::ptrdiff_t(row) * columns + column : -1;
    };
    for (const osg::ref_ptr<Block>& block : blocks)
        if (block->getTransform() == transform && block->isFlat())
            filled[std::size_t(cellIndex(block->x, block->y))] = block->height;
    BoardMesh([&](float x, float y) {
        const std::ptrdiff_t index = cellIndex(x, y);
        return index < 0 ? 0.0f : filled[std::size_t(index)];
    }).merge(*geode);
    geode->getOrCreateStateSet()->setMode(GL_CULL_FACE, osg::StateAttribute::ON);
}

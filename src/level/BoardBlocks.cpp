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

void Board::createBlocks(const QImage& image)
{
    const int width = image.width();
    const int height = image.height();
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            const LevelPixel pixel = LevelPixel::decode(image.pixel(column, row));
            if (pixel.value == 0)
                continue;
            const osg::Vec2f position((float(column) - float(width) * 0.5f) + 0.5f,
                                      (float(height) * 0.5f - float(row)) - 0.5f);
            BlockGroup& group = groups[pixel.alpha];
            if (Block* block = blockOfPixel(pixel, column, row, position, group)) {
                blocks.push_back(block);
                group.push_back(block);
            }
        }
    }
}

Block* Board::blockOfPixel(const LevelPixel& pixel, int column, int row, const osg::Vec2f& position,
                           BlockGroup& group)
{
    const BlockKind kind = blockKindOfHue(pixel.hue);
    const BlockFactory create = blockFactoryOf(kind);
    if (!create)
        return nullptr;
    if (kind != BlockKind::Standard && pixel.value < firstBodyValue) {
        // Every other kind needs a body to hang its parts on.
        say("I cannot build the block of ", level->pictureFile, " at column ", column, ", row ",
            row, ": it has hue ", pixel.hue, ", saturation ", pixel.saturation, ", value ",
            pixel.value, ", alpha ", pixel.alpha, ", and a value under ", firstBodyValue,
            " gives it no body.");
        return nullptr;
    }
    return create(*level, position.x(), position.y(), pixel.saturation, pixel.value, group);
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
    for (const osg::ref_ptr<Block>& block : blocks) {
        if (block->getTransform() == transform && block->isFlat())
            filled[std::size_t(cellIndex(block->x, block->y))] = block->height;
    }
    BoardMesh([&](float x, float y) {
        const std::ptrdiff_t index = cellIndex(x, y);
        return index < 0 ? 0.0f : filled[std::size_t(index)];
    }).merge(*geode);
    geode->getOrCreateStateSet()->setMode(GL_CULL_FACE, osg::StateAttribute::ON);
}

// The board's blocks: what the level picture makes of it.
#include "base/Say.h"
#include "level/BlockFactory.h"
#include "level/BlockShape.h"
#include "level/Board.h"
#include "level/BoardLook.h"
#include "level/BoardMesh.h"
#include "level/Ground.h"
#include "level/Level.h"
#include "level/LevelPixel.h"
#include "level/Relief.h"

#include <QImage>

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

Relief Board::reliefOf(int columns, int rows) const
{
    Relief relief(columns, rows);
    for (const osg::ref_ptr<Block>& block : blocks) {
        if (!block->getTransform())
            continue;
        Relief::Cell cell;
        cell.top = block->corners();
        cell.filled = true;
        cell.merged = block->getTransform() == transform;
        cell.restless = block->isRestless();
        relief.set(relief.columnOf(block->x), relief.rowOf(block->y), cell);
    }
    return relief;
}

void Board::finishLook(const Relief& relief)
{
    BoardMesh(relief).merge(*geode);
    geode->getOrCreateStateSet()->setMode(GL_CULL_FACE, osg::StateAttribute::ON);
    root->setCullCallback(new BoardLook(*level, relief, *root->getOrCreateStateSet()));
    level->ground->catchShadow(*this, relief);
}

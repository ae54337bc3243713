#include "level/PictureFile.h"

#include "level/BlockShape.h"
#include "level/LevelPixel.h"

#include <QImageReader>

namespace {

int bodiesOf(const QImage& picture)
{
    int bodies = 0;
    for (int row = 0; row < picture.height(); ++row) {
        for (int column = 0; column < picture.width(); ++column) {
            const LevelPixel pixel = LevelPixel::decode(picture.pixel(column, row));
            if (pixel.value >= firstBodyValue && hasOwnBody(blockKindOfHue(pixel.hue)))
                ++bodies;
        }
    }
    return bodies;
}

}  // namespace

std::string refusalOf(const std::string& file, const QSize& size)
{
    // In 64 bits: a head may tell any number.
    if (qint64(size.width()) * size.height() <= mostCells)
        return "";
    return "I cannot build " + file + ": it is a picture of " + std::to_string(size.width()) +
           " x " + std::to_string(size.height()) + " pixels, each of them a cell, and I build " +
           std::to_string(mostCells) + " cells at most. Make it smaller.";
}

std::string refusalOf(const std::string& file, const QImage& picture)
{
    std::string ofSize = refusalOf(file, picture.size());
    if (!ofSize.empty())
        return ofSize;
    const int bodies = bodiesOf(picture);
    if (bodies <= mostBodies)
        return "";
    return "I cannot build " + file + ": its colours make " + std::to_string(bodies) +
           " blocks that are no floor or wall, and I build " + std::to_string(mostBodies) +
           " of those at most. Paint more of it black, or as floor and wall.";
}

PictureFile PictureFile::read(const std::string& file)
{
    QImageReader reader(QString::fromStdString(file));
    std::string refusal = refusalOf(file, reader.size());
    if (!refusal.empty())
        return {QImage(), refusal};
    const QImage picture = reader.read();
    // Once more: not every format tells its size in the head, and a head may lie.
    refusal = refusalOf(file, picture);
    return {refusal.empty() ? picture : QImage(), refusal};
}

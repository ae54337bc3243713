#include "level/BoardShadow.h"

#include "level/Board.h"
#include "level/Relief.h"

#include <osg/Image>
#include <osg/Texture2D>

#include <vector>

namespace {

constexpr unsigned int coverUnit = 1;
constexpr int margin = 3;  // cells round the board that the blur reaches into
constexpr int blurs = 2;

/// A picture of a cell a point; one round of blur replaces each point by a weighted mean of three.
struct Cover
{
    int width;
    int height;
    std::vector<float> points;

    explicit Cover(const Relief& relief)
        : width(relief.columnCount() + 2 * margin),
          height(relief.rowCount() + 2 * margin),
          points(std::size_t(width) * std::size_t(height), 0.0f)
    {
        for (int row = 0; row < relief.rowCount(); ++row) {
            for (int column = 0; column < relief.columnCount(); ++column)
                points[std::size_t((row + margin) * width + column + margin)] =
                    relief.at(column, row).filled ? 1.0f : 0.0f;
        }
    }

    void blur(int step)
    {
        const std::vector<float> before = points;
        const std::size_t way = std::size_t(step);
        for (std::size_t i = way; i + way < points.size(); ++i)
            points[i] = 0.25f * before[i - way] + 0.5f * before[i] + 0.25f * before[i + way];
    }
};

osg::ref_ptr<osg::Texture2D> coverOf(const Relief& relief)
{
    Cover cover(relief);
    for (int i = 0; i < blurs; ++i) {
        cover.blur(1);
        cover.blur(cover.width);
    }
    osg::ref_ptr<osg::Image> picture = new osg::Image;
    picture->allocateImage(cover.width, cover.height, 1, GL_LUMINANCE, GL_UNSIGNED_BYTE);
    for (int row = 0; row < cover.height; ++row) {
        for (int column = 0; column < cover.width; ++column)
            *picture->data(unsigned(column), unsigned(row)) = static_cast<unsigned char>(
                255.0f * cover.points[std::size_t(row * cover.width + column)] + 0.5f);
    }
    osg::ref_ptr<osg::Texture2D> texture = new osg::Texture2D(picture);
    texture->setResizeNonPowerOfTwoHint(false);
    texture->setFilter(osg::Texture::MIN_FILTER, osg::Texture::LINEAR);
    texture->setFilter(osg::Texture::MAG_FILTER, osg::Texture::LINEAR);
    texture->setWrap(osg::Texture::WRAP_S, osg::Texture::CLAMP_TO_EDGE);
    texture->setWrap(osg::Texture::WRAP_T, osg::Texture::CLAMP_TO_EDGE);
    return texture;
}

}  // namespace

BoardShadow::BoardShadow(const Board& owner, const Relief& relief, osg::StateSet& groundState)
    : board(owner), worldToBoard(new osg::Uniform("a_WorldToBoard", osg::Matrixf()))
{
    groundState.addUniform(worldToBoard);
    groundState.setTextureAttribute(coverUnit, coverOf(relief));
    groundState.addUniform(new osg::Uniform("a_BoardCover", int(coverUnit)));
    groundState.addUniform(
        new osg::Uniform("a_CoverSize", osg::Vec2f(float(relief.columnCount() + 2 * margin),
                                                   float(relief.rowCount() + 2 * margin))));
}

void BoardShadow::operator()(osg::Node* node, osg::NodeVisitor* visitor)
{
    worldToBoard->set(osg::Matrixf(board.getTransform()->getInverseMatrix()));
    traverse(node, visitor);
}

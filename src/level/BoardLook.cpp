#include "level/BoardLook.h"

#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/Block.h"
#include "level/Board.h"
#include "level/Level.h"
#include "level/Relief.h"

#include <osg/Texture2D>

#include <cstring>

namespace {

constexpr unsigned int grainUnit = 0;
constexpr unsigned int shadeUnit = 1;

}  // namespace

BoardLook::BoardLook(Level& owner, const Relief& relief, osg::StateSet& rootState)
    : level(owner), field(relief.columnCount(), relief.rowCount())
{
    rootState.setTextureAttribute(grainUnit, level.game()->sharedTexture("data/Rollix/wood.png"));
    rootState.addUniform(new osg::Uniform("a_WoodGrain", int(grainUnit)));
    rootState.addUniform(new osg::Uniform("a_OpenEdges", osg::Vec4f()));
    rootState.addUniform(new osg::Uniform("a_Lacquer", osg::Vec4f()));
    ballPlace = new osg::Uniform("a_BallPosition", osg::Vec3f());
    rootState.addUniform(ballPlace);
    setUpShadeMap(rootState);
    rootState.addUniform(
        new osg::Uniform("a_ShadeOrigin", osg::Vec2f(0.5f * float(relief.columnCount()) + 1.0f,
                                                     0.5f * float(relief.rowCount()) + 1.0f)));
    findBlocks(relief);
}

void BoardLook::setUpShadeMap(osg::StateSet& rootState)
{
    shadeMap = new osg::Image;
    shadeMap->allocateImage(field.width(), field.height(), 1, GL_RGBA, GL_UNSIGNED_BYTE);
    osg::ref_ptr<osg::Texture2D> texture = new osg::Texture2D(shadeMap);
    texture->setResizeNonPowerOfTwoHint(false);
    texture->setFilter(osg::Texture::MIN_FILTER, osg::Texture::LINEAR);
    texture->setFilter(osg::Texture::MAG_FILTER, osg::Texture::LINEAR);
    texture->setWrap(osg::Texture::WRAP_S, osg::Texture::CLAMP_TO_EDGE);
    texture->setWrap(osg::Texture::WRAP_T, osg::Texture::CLAMP_TO_EDGE);
    rootState.setTextureAttribute(shadeUnit, texture);
    rootState.addUniform(new osg::Uniform("a_ShadeMap", int(shadeUnit)));
    rootState.addUniform(new osg::Uniform(
        "a_ShadePoints", osg::Vec3f(float(field.pointsOfCell()), 1.0f / float(field.width()),
                                    1.0f / float(field.height()))));
}

void BoardLook::findBlocks(const Relief& relief)
{
    for (int row = 0; row < relief.rowCount(); ++row) {
        for (int column = 0; column < relief.columnCount(); ++column)
            if (relief.at(column, row).filled)
                field.setTop(column, row, relief.at(column, row).top);
    }
    for (const osg::ref_ptr<Block>& block : level.board->getBlocks()) {
        if (!block->hovering().empty())
            hovering.push_back(block);
        const int column = relief.columnOf(block->x);
        const int row = relief.rowOf(block->y);
        if (!relief.at(column, row).filled || relief.at(column, row).merged)
            continue;
        block->setOpenEdges(relief.openEdges(column, row));
        dynamicBlocks.push_back({block, column, row});
    }
}

void BoardLook::lookAtBlocks()
{
    for (const Standing& standing : dynamicBlocks) {
        const float presence = standing.block->presence();
        if (presence > 0.0f)
            field.setTop(standing.column, standing.row,
                         standing.block->corners().moved(presence, standing.block->lift()));
        else
            field.setHole(standing.column, standing.row);
    }
    std::vector<Hovering> things;
    for (const Block* block : hovering) {
        const std::vector<Hovering> shown = block->hovering();
        things.insert(things.end(), shown.begin(), shown.end());
    }
    field.setHovering(things);
}

osg::Vec3f BoardLook::lampOverBoard() const
{
    return osg::Vec3d(Rollix::lightPosition) * level.board->getTransform()->getInverseMatrix();
}

void BoardLook::operator()(osg::Node* node, osg::NodeVisitor* visitor)
{
    ballPlace->set(osg::Vec3f(level.ball->getTransform()->getMatrix().getTrans()));
    lookAtBlocks();
    bool changed = false;
    // A level is not to be seen without its shadows.
    while (field.update(lampOverBoard())) {
        changed = true;
        if (seen)
            break;
    }
    seen = true;
    if (changed) {
        std::memcpy(shadeMap->data(), field.points(), shadeMap->getTotalSizeInBytes());
        shadeMap->dirty();
    }
    traverse(node, visitor);
}

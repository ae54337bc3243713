#include "level/BoardLook.h"

#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/Block.h"
#include "level/Board.h"
#include "level/Level.h"
#include "level/Relief.h"

#include <osg/Texture2D>
#include <osgUtil/CullVisitor>

#include <cmath>
#include <cstring>

namespace {

constexpr unsigned int grainUnit = 0;
constexpr unsigned int shadeUnit = 1;
constexpr int grainCells = 23;  // that its picture covers, as boardShader.vert knows

/// Puts the board's middle, counted with the shade map's ring, on the middle of the picture.
float grainOriginFor(int cells)
{
    return std::floor(0.5f * float(grainCells - cells)) - 1.0f;
}

}  // namespace

BoardLook::BoardLook(Level& owner, const Relief& relief, osg::StateSet& rootState)
    : level(owner), field(relief.columnCount(), relief.rowCount())
{
    rootState.setTextureAttribute(grainUnit, level.game()->sharedTexture("data/Rollix/wood.png"));
    rootState.addUniform(new osg::Uniform("a_WoodGrain", int(grainUnit)));
    rootState.addUniform(new osg::Uniform("a_OpenEdges", osg::Vec4f()));
    rootState.addUniform(new osg::Uniform("a_Lacquer", osg::Vec4f()));
    eyeToBoard = new osg::Uniform("a_EyeToBoard", osg::Matrixf());
    rootState.addUniform(eyeToBoard);
    lampOnBoard = new osg::Uniform("a_LampOnBoard", osg::Vec3f());
    rootState.addUniform(lampOnBoard);
    upOnBoard = new osg::Uniform("a_UpOnBoard", osg::Vec3f());
    rootState.addUniform(upOnBoard);
    ballOnBoard = new osg::Uniform("a_BallOnBoard", osg::Vec3f());
    rootState.addUniform(ballOnBoard);
    rootState.addUniform(
        new osg::Uniform("a_GrainOrigin", osg::Vec2f(grainOriginFor(relief.columnCount()),
                                                     grainOriginFor(relief.rowCount()))));
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

void BoardLook::setPlaces(const osg::Matrixd& worldToView)
{
    const osg::Matrixd worldToBoard = level.board->getTransform()->getInverseMatrix();
    lamp = osg::Vec3d(Rollix::lightPosition) * worldToBoard;
    lampOnBoard->set(lamp);
    upOnBoard->set(osg::Vec3f(osg::Matrixd::transform3x3(osg::Vec3d(0.0, 0.0, 1.0), worldToBoard)));
    ballOnBoard->set(osg::Vec3f(level.ball->getTransform()->getMatrix().getTrans() * worldToBoard));
    eyeToBoard->set(osg::Matrixf(osg::Matrixd::inverse(worldToView) * worldToBoard));
}

void BoardLook::operator()(osg::Node* node, osg::NodeVisitor* visitor)
{
    setPlaces(*visitor->asCullVisitor()->getModelViewMatrix());
    lookAtBlocks();
    bool changed = false;
    // A level is not to be seen without its shadows.
    while (field.update(lamp)) {
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

#include "level/BoardShadow.h"

#include "game/Rollix.h"
#include "level/Board.h"
#include "level/Relief.h"

#include <osg/Texture2D>

#include <algorithm>
#include <cmath>

namespace {

constexpr unsigned int pictureUnit = 0;
constexpr int margin = 3;  // cells round the board that the blur reaches into
constexpr int blurs = 2;
constexpr float shadowStrength = 0.62f;

// The ground, in units.
constexpr float groundTop = -9.95f;
constexpr float groundSide = 30.0f;
constexpr float fadeWidth = 2.5f;  // of its edge
constexpr float groundColor = 0.2f * 255.0f;
constexpr float lampShare = 1.25f;  // what it shows of its colour in full light
constexpr float grainStrength = 0.45f;
constexpr float meanGrain = 0.25f;

constexpr int points = 256;       // of the picture, along an edge
constexpr int shadowPoints = 65;  // where the shadow is worked out: on every fourth of them

float smoothStep(float part)
{
    return part * part * (3.0f - 2.0f * part);
}

/// Of the middle of a point, from -groundSide / 2 on.
float placeOf(int point)
{
    return ((float(point) + 0.5f) / float(points) - 0.5f) * groundSide;
}

float mixed(float from, float to, float part)
{
    return from + (to - from) * part;
}

std::size_t indexOf(int column, int row, int width)
{
    return std::size_t(row) * std::size_t(width) + std::size_t(column);
}

}  // namespace

BoardShadow::Cover::Cover(const Relief& relief)
    : width(relief.columnCount() + 2 * margin),
      height(relief.rowCount() + 2 * margin),
      points(std::size_t(width) * std::size_t(height), 0.0f)
{
    for (int row = 0; row < relief.rowCount(); ++row) {
        for (int column = 0; column < relief.columnCount(); ++column)
            points[indexOf(column + margin, row + margin, width)] =
                relief.at(column, row).filled ? 1.0f : 0.0f;
    }
    for (int i = 0; i < blurs; ++i) {
        blur(1);
        blur(width);
    }
}

/// Replaces each point by a weighted mean of three.
void BoardShadow::Cover::blur(int step)
{
    const std::vector<float> before = points;
    const std::size_t way = std::size_t(step);
    for (std::size_t i = way; i + way < points.size(); ++i)
        points[i] = 0.25f * before[i - way] + 0.5f * before[i] + 0.25f * before[i + way];
}

float BoardShadow::Cover::at(float x, float y) const
{
    // The outermost points are bare, and stand for all that is further off.
    const float column = std::clamp(x + 0.5f * float(width) - 0.5f, 0.0f, float(width) - 1.001f);
    const float row = std::clamp(y + 0.5f * float(height) - 0.5f, 0.0f, float(height) - 1.001f);
    const float u = column - std::floor(column);
    const float* corner = &points[indexOf(int(column), int(row), width)];
    return mixed(mixed(corner[0], corner[1], u), mixed(corner[width], corner[width + 1], u),
                 row - std::floor(row));
}

BoardShadow::BoardShadow(const Board& owner, const Relief& relief, const osg::Image* grain,
                         osg::StateSet& groundState)
    : board(owner), cover(relief), picture(new osg::Image)
{
    picture->allocateImage(points, points, 1, GL_RGBA, GL_UNSIGNED_BYTE);
    paintGround(grain);
    osg::ref_ptr<osg::Texture2D> texture = new osg::Texture2D(picture);
    texture->setFilter(osg::Texture::MIN_FILTER, osg::Texture::LINEAR);
    texture->setFilter(osg::Texture::MAG_FILTER, osg::Texture::LINEAR);
    texture->setWrap(osg::Texture::WRAP_S, osg::Texture::CLAMP_TO_EDGE);
    texture->setWrap(osg::Texture::WRAP_T, osg::Texture::CLAMP_TO_EDGE);
    groundState.setTextureAttribute(pictureUnit, texture);
    groundState.addUniform(new osg::Uniform("a_GroundPicture", int(pictureUnit)));
}

void BoardShadow::paintGround(const osg::Image* grain)
{
    for (int y = 0; y < points; ++y) {
        for (int x = 0; x < points; ++x) {
            const float toEdge =
                0.5f * groundSide - std::max(std::abs(placeOf(x)), std::abs(placeOf(y)));
            const float inside = smoothStep(std::clamp(toEdge / fadeWidth, 0.0f, 1.0f));
            float dark = 0.0f;
            if (grain && grain->data()) {
                const osg::Vec2f place((float(x) + 0.5f) / points, (float(y) + 0.5f) / points);
                dark = grain->getColor(place).r() - meanGrain;
            }
            lit.push_back(groundColor * lampShare * (1.0f - grainStrength * dark) * inside);
            for (int channel = 0; channel < 3; ++channel)
                faded.push_back(255.0f * Rollix::skyColor[channel] * (1.0f - inside));
        }
    }
}

// The way from a point of the ground to the lamp goes through the board's plane somewhere.
void BoardShadow::layShadow(const osg::Matrixd& worldToBoard)
{
    const osg::Vec3f lamp = osg::Vec3d(Rollix::lightPosition) * worldToBoard;
    constexpr int step = (points - 1) / (shadowPoints - 2);
    std::vector<float> light(indexOf(0, shadowPoints, shadowPoints));
    for (int j = 0; j < shadowPoints; ++j) {
        for (int i = 0; i < shadowPoints; ++i) {
            const osg::Vec3f place =
                osg::Vec3d(placeOf(i * step), placeOf(j * step), groundTop) * worldToBoard;
            const float part = lamp.z() / (lamp.z() - place.z());
            const osg::Vec3f through = lamp + (place - lamp) * part;
            light[indexOf(i, j, shadowPoints)] =
                1.0f - shadowStrength * cover.at(through.x(), through.y());
        }
    }
    for (int y = 0; y < points; ++y) {
        const float* const row = &light[indexOf(0, y / step, shadowPoints)];
        const float v = float(y % step) / float(step);
        unsigned char* texel = picture->data(0, unsigned(y));
        for (int x = 0; x < points; ++x, texel += 4) {
            const float* const corner = row + x / step;
            const float u = float(x % step) / float(step);
            const float own = mixed(mixed(corner[0], corner[1], u),
                                    mixed(corner[shadowPoints], corner[shadowPoints + 1], u), v) *
                              lit[indexOf(x, y, points)];
            const float* const sky = &faded[3 * indexOf(x, y, points)];
            for (int channel = 0; channel < 3; ++channel)
                texel[channel] = static_cast<unsigned char>(own + sky[channel] + 0.5f);
            texel[3] = 255;
        }
    }
    picture->dirty();
}

void BoardShadow::operator()(osg::Node* node, osg::NodeVisitor* visitor)
{
    const osg::Matrixd pose = board.getTransform()->getMatrix();
    if (!shown || pose != shownPose) {
        layShadow(board.getTransform()->getInverseMatrix());
        shownPose = pose;
        shown = true;
    }
    traverse(node, visitor);
}

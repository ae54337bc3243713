#include "hud/ImageHUD.h"

#include "base/UnreadableFile.h"
#include "hud/OverlayShader.h"
#include "shaders/ShaderProgram.h"

#include <osg/Geometry>
#include <osg/Image>
#include <osg/Texture2D>
#include <osgDB/ReadFile>
#include <osgDB/Registry>

#include <utility>

ImageHUD::ImageHUD() = default;
ImageHUD::~ImageHUD() = default;

void ImageHUD::init(osg::Group* parentGroup, osgViewer::View* parentView)
{
    AbstractHUD::init(parentGroup, parentView);
    initShader();
}

void ImageHUD::init(ContainerHUD* parentContainer)
{
    AbstractHUD::init(parentContainer);
    initShader();
}

void ImageHUD::initShader()
{
    shader = installOverlayShader(*geode, "image", "imageTexture");
}

void ImageHUD::build()
{
    if (imageFile.empty())
        return;
    const osg::ref_ptr<osg::Image> image =
        osgDB::readRefImageFile(imageFile, osgDB::Registry::instance()->getOptions());
    if (!image || image->s() <= 0 || image->t() <= 0) {
        reportUnreadable("image", imageFile, "Imagine it.");
        return;
    }
    noteReadable(imageFile);

    const int px = int(getWidth() * position.x());
    const int py = int(getHeight() * position.y());
    int w = int(getWidth() * size.x());
    int h = int(getHeight() * size.y());
    if (w != 0 && h == 0) {
        h = image->t() * w / image->s();
    } else if (h != 0 && w == 0) {
        w = image->s() * h / image->t();
    } else if (w == 0 && h == 0) {
        w = image->s();
        h = image->t();
    }

    const int column = alignment / 3;        // 0 left, 1 centre, 2 right
    const int row = alignment - 3 * column;  // 0 top, 1 centre, 2 bottom
    const double x0 = px - column * 0.5 * w;
    const double y0 = py - (2.0 - row) * 0.5 * h;

    osg::ref_ptr<osg::Texture2D> texture = new osg::Texture2D(image);
    // Else the picture is stretched to a power of two first, and blurred by it.
    texture->setResizeNonPowerOfTwoHint(false);
    texture->setWrap(osg::Texture::WRAP_S, osg::Texture::CLAMP_TO_EDGE);
    texture->setWrap(osg::Texture::WRAP_T, osg::Texture::CLAMP_TO_EDGE);
    osg::ref_ptr<osg::Geometry> quad = osg::createTexturedQuadGeometry(
        osg::Vec3(x0, y0, 0), osg::Vec3(w, 0, 0), osg::Vec3(0, h, 0), 0.0f, 0.0f, 1.0f, 1.0f);
    quad->getOrCreateStateSet()->setTextureAttributeAndModes(0, texture, osg::StateAttribute::ON);
    geode->addDrawable(quad);
}

void ImageHUD::setImage(std::string file)
{
    imageFile = std::move(file);
    refresh();
}

void ImageHUD::setPosition(osg::Vec2f newPosition)
{
    position = newPosition;
    refresh();
}

void ImageHUD::setSize(osg::Vec2f newSize)
{
    size = newSize;
    refresh();
}

void ImageHUD::setAlignment(int newAlignment)
{
    alignment = newAlignment;
    refresh();
}

#include "support/FrameGrab.h"

#include <osg/Image>
#include <osg/RenderInfo>
#include <osg/Viewport>

#include <cstdlib>

class FrameGrab::ReadBack : public osg::Camera::DrawCallback
{
public:
    void operator()(osg::RenderInfo& info) const override
    {
        const osg::Viewport* viewport = info.getCurrentCamera()->getViewport();
        osg::ref_ptr<osg::Image> pixels = new osg::Image;
        pixels->readPixels(0, 0, int(viewport->width()), int(viewport->height()), GL_RGBA,
                           GL_UNSIGNED_BYTE);
        frame = QImage(pixels->data(), pixels->s(), pixels->t(), QImage::Format_RGBA8888)
                    .mirrored()
                    .convertToFormat(QImage::Format_RGB32);
    }

    mutable QImage frame;
};

FrameGrab::FrameGrab(osg::Camera* source) : camera(source), readBack(new ReadBack)
{
    camera->setFinalDrawCallback(readBack);
}

FrameGrab::~FrameGrab()
{
    camera->setFinalDrawCallback(nullptr);
}

QImage FrameGrab::image() const
{
    return readBack->frame;
}

int differingPixels(const QImage& a, const QImage& b, int tolerance)
{
    int count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb first = a.pixel(x, y);
            const QRgb second = b.pixel(x, y);
            if (std::abs(qRed(first) - qRed(second)) > tolerance ||
                std::abs(qGreen(first) - qGreen(second)) > tolerance ||
                std::abs(qBlue(first) - qBlue(second)) > tolerance)
                ++count;
        }
    }
    return count;
}

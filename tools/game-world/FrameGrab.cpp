#include "FrameGrab.h"

#include <osg/Image>
#include <osg/RenderInfo>
#include <osg/Viewport>

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

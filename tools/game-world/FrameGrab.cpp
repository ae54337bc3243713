#include "FrameGrab.h"

#include <osg/GLExtensions>
#include <osg/Image>
#include <osg/RenderInfo>
#include <osg/Viewport>

#include <optional>

namespace {

/// While it lives, what is read is a copy of the window with one sample a pixel.
class MixedSamples
{
public:
    MixedSamples(osg::State& state, int width, int height) : gl(*state.get<osg::GLExtensions>())
    {
        gl.glGenRenderbuffers(1, &colors);
        gl.glBindRenderbuffer(GL_RENDERBUFFER_EXT, colors);
        gl.glRenderbufferStorage(GL_RENDERBUFFER_EXT, GL_RGBA8, width, height);
        gl.glGenFramebuffers(1, &copy);
        gl.glBindFramebuffer(GL_DRAW_FRAMEBUFFER_EXT, copy);
        gl.glFramebufferRenderbuffer(GL_DRAW_FRAMEBUFFER_EXT, GL_COLOR_ATTACHMENT0_EXT,
                                     GL_RENDERBUFFER_EXT, colors);
        gl.glBlitFramebuffer(0, 0, width, height, 0, 0, width, height, GL_COLOR_BUFFER_BIT,
                             GL_NEAREST);
        gl.glBindFramebuffer(GL_READ_FRAMEBUFFER_EXT, copy);
    }

    ~MixedSamples()
    {
        gl.glBindFramebuffer(GL_FRAMEBUFFER_EXT, 0);
        gl.glDeleteFramebuffers(1, &copy);
        gl.glDeleteRenderbuffers(1, &colors);
    }

    MixedSamples(const MixedSamples&) = delete;
    MixedSamples& operator=(const MixedSamples&) = delete;

private:
    osg::GLExtensions& gl;
    GLuint colors = 0;
    GLuint copy = 0;
};

}  // namespace

class FrameGrab::ReadBack : public osg::Camera::DrawCallback
{
public:
    explicit ReadBack(Samples wanted) : samples(wanted) {}

    void operator()(osg::RenderInfo& info) const override
    {
        const osg::Viewport* viewport = info.getCurrentCamera()->getViewport();
        const int width = int(viewport->width());
        const int height = int(viewport->height());
        std::optional<MixedSamples> mixed;
        if (samples == Samples::All)
            mixed.emplace(*info.getState(), width, height);
        osg::ref_ptr<osg::Image> pixels = new osg::Image;
        pixels->readPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE);
        frame = QImage(pixels->data(), pixels->s(), pixels->t(), QImage::Format_RGBA8888)
                    .mirrored()
                    .convertToFormat(QImage::Format_RGB32);
    }

    mutable QImage frame;

private:
    const Samples samples;
};

FrameGrab::FrameGrab(osg::Camera* source, Samples samples)
    : camera(source), readBack(new ReadBack(samples))
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

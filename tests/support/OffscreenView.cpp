#include "support/OffscreenView.h"

#include <osg/GraphicsContext>
#include <osgDB/WriteFile>

namespace {

struct GrabFrame : osg::Camera::DrawCallback
{
    explicit GrabFrame(osg::Image* target) : image(target) {}

    void operator()(osg::RenderInfo& info) const override
    {
        const osg::Viewport* viewport = info.getCurrentCamera()->getViewport();
        image->readPixels(0, 0, int(viewport->width()), int(viewport->height()), GL_RGBA,
                          GL_UNSIGNED_BYTE);
    }

    osg::ref_ptr<osg::Image> image;
};

}  // namespace

OffscreenView::OffscreenView(int width, int height)
    : viewer(new osgViewer::CompositeViewer),
      view_(new osgViewer::View),
      root_(new osg::Group),
      frame(new osg::Image)
{
    osg::ref_ptr<osg::GraphicsContext::Traits> traits = new osg::GraphicsContext::Traits;
    traits->readDISPLAY();
    traits->setUndefinedScreenDetailsToDefaultScreen();
    traits->width = width;
    traits->height = height;
    traits->pbuffer = true;
    traits->doubleBuffer = false;
    traits->alpha = 8;
    traits->stencil = 8;
    osg::ref_ptr<osg::GraphicsContext> context =
        osg::GraphicsContext::createGraphicsContext(traits);
    context->getState()->setUseModelViewAndProjectionUniforms(true);
    context->getState()->setUseVertexAttributeAliasing(true);

    osg::Camera* camera = view_->getCamera();
    camera->setGraphicsContext(context);
    camera->setViewport(0, 0, width, height);
    camera->setDrawBuffer(GL_FRONT);
    camera->setReadBuffer(GL_FRONT);
    camera->setProjectionMatrixAsPerspective(30.0, double(width) / height, 1.0, 10000.0);
    camera->setFinalDrawCallback(new GrabFrame(frame));
    view_->setSceneData(root_);
    viewer->setThreadingModel(osgViewer::ViewerBase::SingleThreaded);
    viewer->setKeyEventSetsDone(0);
    viewer->addView(view_);
}

void OffscreenView::setBackground(const osg::Vec4& color)
{
    view_->getCamera()->setClearColor(color);
}

void OffscreenView::draw()
{
    viewer->frame();
}

osg::Vec3i OffscreenView::pixel(int x, int y) const
{
    const unsigned char* data = frame->data(x, y);
    return {data[0], data[1], data[2]};
}

void OffscreenView::resizeWindow(int width, int height)
{
    view_->getEventQueue()->windowResize(0, 0, width, height);
}

void OffscreenView::save(const std::string& path) const
{
    osgDB::writeImageFile(*frame, path);
}

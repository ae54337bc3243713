#include "hud/AbstractHUD.h"

#include "hud/ContainerHUD.h"

#include <osg/BlendFunc>
#include <osg/StateSet>
#include <osg/Viewport>

namespace {

constexpr int overlayBin = 11;  // after the transparent parts of the scene, which are in bin 10

}  // namespace

AbstractHUD::AbstractHUD() : modelView(new osg::MatrixTransform) {}

bool AbstractHUD::handle(const osgGA::GUIEventAdapter& event, osgGA::GUIActionAdapter&)
{
    if (width != 0 && event.getEventType() != osgGA::GUIEventAdapter::RESIZE)
        return false;
    resize(event.getWindowWidth(), event.getWindowHeight());
    return false;
}

void AbstractHUD::init(osg::Group* parentGroup, osgViewer::View* parentView)
{
    geode = new osg::Geode;
    makeOverlay(*geode);
    projection = new osg::Projection;
    inContainer = false;
    parent = parentGroup;
    view = parentView;
    resizeToViewport();
    modelView->setMatrix(osg::Matrix::identity());
    modelView->setReferenceFrame(osg::Transform::ABSOLUTE_RF_INHERIT_VIEWPOINT);
    projection->addChild(modelView);
    modelView->addChild(geode);
}

void AbstractHUD::init(ContainerHUD* parentContainer)
{
    container = parentContainer;
    inContainer = true;
    container->addChild(this);
}

void AbstractHUD::setGeode(osg::Geode* newGeode)
{
    geode = newGeode;
}

void AbstractHUD::show()
{
    if (visible)
        return;
    visible = true;
    if (inContainer) {
        container->attachChild(this);
    } else {
        parent->addChild(projection);
        resizeToViewport();
        view->addEventHandler(this);
    }
    refresh();
}

void AbstractHUD::hide()
{
    if (!visible)
        return;
    visible = false;
    if (inContainer) {
        container->detachChild(this);
        return;
    }
    // The view's list may hold the last reference.
    const osg::ref_ptr<AbstractHUD> self = this;
    parent->removeChild(projection);
    view->removeEventHandler(this);
}

void AbstractHUD::clear()
{
    if (geode)
        geode->removeDrawables(0, geode->getNumDrawables());
}

void AbstractHUD::resize(int newWidth, int newHeight)
{
    width = newWidth;
    height = newHeight;
    if (!inContainer && projection)
        projection->setMatrix(osg::Matrixd::ortho2D(0, width, 0, height));
    refresh();
}

void AbstractHUD::refresh()
{
    if (!visible || !geode)
        return;
    clear();
    build();
}

void AbstractHUD::toggle()
{
    if (visible)
        hide();
    else
        show();
}

void AbstractHUD::makeOverlay(osg::Node& node)
{
    osg::StateSet* state = node.getOrCreateStateSet();
    state->setAttribute(new osg::BlendFunc);
    state->setMode(GL_BLEND, osg::StateAttribute::ON);
    state->setMode(GL_DEPTH_TEST, osg::StateAttribute::OFF);
    state->setRenderingHint(osg::StateSet::TRANSPARENT_BIN);
    state->setRenderBinDetails(overlayBin, "RenderBin", osg::StateSet::USE_RENDERBIN_DETAILS);
}

void AbstractHUD::resizeToViewport()
{
    const osg::Viewport* viewport = view->getCamera()->getViewport();
    if (!viewport)
        return;
    resize(int(viewport->width()), int(viewport->height()));
}

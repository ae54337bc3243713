#pragma once

#include <osg/Geode>
#include <osg/Group>
#include <osg/MatrixTransform>
#include <osg/Projection>
#include <osg/ref_ptr>
#include <osgGA/GUIEventHandler>
#include <osgViewer/View>

class ContainerHUD;

/// Base of everything that is drawn flat over the scene. An element places itself in fractions of
/// the window, from its lower left corner, and is built anew from its settings whenever one of them
/// or the window's size changes.
///
/// It stands alone, with a projection and an event handler of its own, or in a container, which
/// then gives it projection, size and visibility. All operations need the world lock when called
/// off the main thread.
class AbstractHUD : public osgGA::GUIEventHandler
{
public:
    using osgGA::GUIEventHandler::handle;

    AbstractHUD();

    /// Sets the size of a stand-alone element from the event's window, at each resize and at the
    /// very first event. Never consumes the event.
    bool handle(const osgGA::GUIEventAdapter& event, osgGA::GUIActionAdapter& action) override;

    /// Prepares a stand-alone element, to be called once; show() then hangs it under `parent`.
    virtual void init(osg::Group* parent, osgViewer::View* view);
    /// Puts the element into a container, to be called once; it is visible when that is.
    virtual void init(ContainerHUD* container);
    virtual void setGeode(osg::Geode* geode);

    virtual void show();
    /// Not from inside this element's own handle(): the view is then still on its list entry.
    virtual void hide();

    /// Makes the drawables from the settings.
    virtual void build() = 0;
    /// Takes all drawables away.
    virtual void clear();

    /// Window size in pixels.
    virtual void resize(int width, int height);

    osg::Geode* getGeode() { return geode.get(); }
    int getWidth() const { return width; }
    int getHeight() const { return height; }
    bool isVisible() const { return visible; }

    /// Clears and builds, if there is something to see.
    void refresh();
    void toggle();

protected:
    ~AbstractHUD() override = default;

    /// Draws what is below `node` last, blended and without depth.
    static void makeOverlay(osg::Node& node);

    bool inContainer = false;
    bool visible = false;
    int width = 0;
    int height = 0;
    ContainerHUD* container = nullptr;
    osg::ref_ptr<osg::Geode> geode;
    osg::ref_ptr<osg::Group> parent;
    // The game is the view and owns its elements: a counted reference would keep it for good, and
    // one taken while the game is still being built would be its first and so also its last.
    osgViewer::View* view = nullptr;
    osg::ref_ptr<osg::Projection> projection;
    osg::ref_ptr<osg::MatrixTransform> modelView;

private:
    void resizeToViewport();
};

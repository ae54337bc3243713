// The game's main(), up to the first picture: what a player waits for. With --bare, the same window
// with nothing in it, which is what Qt, OpenSceneGraph and the driver take by themselves.

#include "frame/GameLoop.h"
#include "frame/OsgViewerWidget.h"
#include "game/Rollix.h"
#include "platform/osgqt/GraphicsWindowQt.h"

#include <QApplication>
#include <QTimer>
#include <osgViewer/View>

#include <cstdlib>
#include <string>

namespace {

constexpr int frameMilliseconds = 20;

/// Ends the process when the picture that is just drawn has been shown.
class EndAfterFrame : public osg::Camera::DrawCallback
{
public:
    void operator()(osg::RenderInfo&) const override
    {
        QTimer::singleShot(
            0, [] { std::_Exit(0); });
    }
};

osg::ref_ptr<osgViewer::View> bareView(OsgViewerWidget& widget)
{
    osg::ref_ptr<osgViewer::View> view = new osgViewer::View;
    view->getCamera()->setGraphicsContext(widget.getGraphicsWindow());
    view->getCamera()->setViewport(0, 0, widget.width(), widget.height());
    return view;
}

}  // namespace

int main(int argc, char** argv)
{
    const bool bare = argc > 1 && std::string(argv[1]) == "--bare";
    QApplication application(argc, argv);
    auto* widget = new OsgViewerWidget;
    Rollix* game = bare ? nullptr : new Rollix(widget);
    const osg::ref_ptr<osgViewer::View> view = bare ? bareView(*widget) : game;
    widget->addView(view);
    view->getCamera()->setFinalDrawCallback(new EndAfterFrame);
    widget->show();
    QTimer bareLoop;
    QObject::connect(&bareLoop, &QTimer::timeout, [widget] { widget->frame(); });
    if (bare)
        bareLoop.start(frameMilliseconds);
    else
        GameLoop::start(game);
    return QApplication::exec();
}

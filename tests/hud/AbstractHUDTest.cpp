#include "hud/ContainerHUD.h"
#include "hud/HudTest.h"

#include <gtest/gtest.h>
#include <osgGA/GUIEventAdapter>

#include <functional>

namespace {

/// An element that shows how often it was built.
class CountingHUD : public AbstractHUD
{
public:
    void build() override
    {
        ++builds;
        geode->addDrawable(new osg::Geometry);
    }

    bool handle(const osgGA::GUIEventAdapter& event, osgGA::GUIActionAdapter& action) override
    {
        if (onEvent)
            onEvent();
        return AbstractHUD::handle(event, action);
    }
    using AbstractHUD::handle;

    osg::Projection* overlay() { return projection.get(); }

    std::function<void()> onEvent;
    int builds = 0;
};

class GroupHUD : public ContainerHUD
{
public:
    osg::Group* lines() { return group.get(); }
    std::size_t childCount() const { return children.size(); }
    osg::Projection* overlay() { return projection.get(); }
};

class AbstractHUDTest : public HudTest
{
protected:
    bool isInScene(osg::Node* node) { return offscreen.root()->containsNode(node); }

    static int drawableCount(AbstractHUD& element)
    {
        return int(element.getGeode()->getNumDrawables());
    }

    struct NoAction : osgGA::GUIActionAdapter
    {
        void requestRedraw() override {}
        void requestContinuousUpdate(bool) override {}
        void requestWarpPointer(float, float) override {}
    };

    static bool sends(AbstractHUD& element, osgGA::GUIEventAdapter::EventType type, int width,
                      int height)
    {
        osg::ref_ptr<osgGA::GUIEventAdapter> event = new osgGA::GUIEventAdapter;
        event->setEventType(type);
        event->setWindowRectangle(0, 0, width, height);
        NoAction action;
        return element.handle(*event, action);
    }
};

}  // namespace

TEST_F(AbstractHUDTest, TakesTheViewportsSizeAtInitAndStaysOutOfTheScene)
{
    auto element = prepared<CountingHUD>(new CountingHUD);

    EXPECT_EQ(element->getWidth(), windowWidth);
    EXPECT_EQ(element->getHeight(), windowHeight);
    EXPECT_FALSE(element->isVisible());
    EXPECT_FALSE(isInScene(element->overlay()));
    EXPECT_FALSE(isRegistered(element));
    EXPECT_EQ(element->builds, 0);
}

TEST_F(AbstractHUDTest, IsDrawnBlendedWithoutDepthInTheBinAboveTheScene)
{
    auto element = prepared<CountingHUD>(new CountingHUD);
    const osg::StateSet* state = element->getGeode()->getStateSet();

    EXPECT_EQ(state->getMode(GL_BLEND), osg::StateAttribute::ON);
    EXPECT_EQ(state->getMode(GL_DEPTH_TEST), osg::StateAttribute::OFF);
    EXPECT_EQ(state->getBinNumber(), 11);
    EXPECT_EQ(state->getBinName(), "RenderBin");
    EXPECT_EQ(state->getRenderBinMode(), osg::StateSet::USE_RENDERBIN_DETAILS);
}

TEST_F(AbstractHUDTest, EntersTheSceneAtShowAndLeavesItAtHide)
{
    auto element = shown<CountingHUD>(new CountingHUD);
    EXPECT_TRUE(element->isVisible());
    EXPECT_TRUE(isInScene(element->overlay()));
    EXPECT_TRUE(isRegistered(element));
    EXPECT_GT(drawableCount(*element), 0);

    element->hide();
    EXPECT_FALSE(element->isVisible());
    EXPECT_FALSE(isInScene(element->overlay()));
    EXPECT_FALSE(isRegistered(element));
    EXPECT_GT(drawableCount(*element), 0) << "the drawables stay";
}

TEST_F(AbstractHUDTest, DoesNothingAtASecondShowOrHide)
{
    auto element = shown<CountingHUD>(new CountingHUD);
    const int builds = element->builds;
    element->show();
    EXPECT_EQ(element->builds, builds);
    EXPECT_EQ(offscreen.root()->getNumChildren(), 1u);
    EXPECT_EQ(offscreen.view()->getEventHandlers().size(), 1u);

    element->hide();
    element->hide();
    EXPECT_EQ(offscreen.root()->getNumChildren(), 0u);
}

TEST_F(AbstractHUDTest, StoresTheSizeWhileHiddenAndBuildsNothing)
{
    auto element = prepared<CountingHUD>(new CountingHUD);
    element->resize(400, 300);

    EXPECT_EQ(element->getWidth(), 400);
    EXPECT_EQ(element->getHeight(), 300);
    EXPECT_EQ(element->overlay()->getMatrix(), osg::Matrixd::ortho2D(0, 400, 0, 300));
    EXPECT_EQ(element->builds, 0);
    EXPECT_EQ(drawableCount(*element), 0);
}

TEST_F(AbstractHUDTest, RebuildsAtShowAfterHide)
{
    auto element = shown<CountingHUD>(new CountingHUD);
    element->hide();
    const int builds = element->builds;

    element->show();

    EXPECT_GT(element->builds, builds);
    EXPECT_EQ(drawableCount(*element), 1) << "the old drawables go first";
}

TEST_F(AbstractHUDTest, RefreshesOnlyWhatIsVisibleAndInitialised)
{
    osg::ref_ptr<CountingHUD> element = new CountingHUD;
    element->refresh();
    EXPECT_EQ(element->builds, 0);

    prepared(element);
    element->refresh();
    EXPECT_EQ(element->builds, 0);

    element->show();
    const int builds = element->builds;
    element->refresh();
    EXPECT_EQ(element->builds, builds + 1);
    EXPECT_EQ(drawableCount(*element), 1);
}

TEST_F(AbstractHUDTest, TogglesBetweenShownAndHidden)
{
    auto element = prepared<CountingHUD>(new CountingHUD);
    element->toggle();
    EXPECT_TRUE(element->isVisible());
    element->toggle();
    EXPECT_FALSE(element->isVisible());
}

TEST_F(AbstractHUDTest, TakesItsFirstSizeFromAnyEventAndLaterOnesFromResizesOnly)
{
    osg::ref_ptr<CountingHUD> element = new CountingHUD;
    EXPECT_FALSE(sends(*element, osgGA::GUIEventAdapter::MOVE, 640, 480));
    EXPECT_EQ(element->getWidth(), 640);
    EXPECT_EQ(element->getHeight(), 480);

    EXPECT_FALSE(sends(*element, osgGA::GUIEventAdapter::MOVE, 100, 100));
    EXPECT_EQ(element->getWidth(), 640);

    EXPECT_FALSE(sends(*element, osgGA::GUIEventAdapter::RESIZE, 1000, 500));
    EXPECT_EQ(element->getWidth(), 1000);
    EXPECT_EQ(element->getHeight(), 500);
}

TEST_F(AbstractHUDTest, FollowsTheWindowStandingAloneAndInAContainer)
{
    auto alone = shown<CountingHUD>(new CountingHUD);
    auto group = shown<GroupHUD>(new GroupHUD);
    osg::ref_ptr<CountingHUD> child = new CountingHUD;
    child->init(group);
    const int builds = child->builds;

    offscreen.resizeWindow(640, 480);
    offscreen.draw();

    EXPECT_EQ(alone->getWidth(), 640);
    EXPECT_EQ(alone->getHeight(), 480);
    EXPECT_EQ(alone->overlay()->getMatrix(), osg::Matrixd::ortho2D(0, 640, 0, 480));
    EXPECT_EQ(child->getWidth(), 640);
    EXPECT_EQ(child->getHeight(), 480);
    EXPECT_GT(child->builds, builds);
    EXPECT_FALSE(isRegistered(child));
}

TEST_F(AbstractHUDTest, MayBeHiddenByAnotherHandlerWhileEventsAreDispatched)
{
    auto before = prepared<CountingHUD>(new CountingHUD);
    auto hider = prepared<CountingHUD>(new CountingHUD);
    auto after = prepared<CountingHUD>(new CountingHUD);
    auto last = prepared<CountingHUD>(new CountingHUD);
    int lastEvents = 0;
    hider->onEvent = [&] {
        before->hide();
        after->hide();
    };
    last->onEvent = [&] {
        ++lastEvents;
    };
    for (const auto& element : {before, hider, after, last})
        element->show();

    offscreen.resizeWindow(640, 480);
    offscreen.draw();

    EXPECT_GT(lastEvents, 0);
    EXPECT_TRUE(isRegistered(hider));
    EXPECT_TRUE(isRegistered(last));
    EXPECT_EQ(offscreen.view()->getEventHandlers().size(), 2u);
}

TEST_F(AbstractHUDTest, DoesNotKeepTheViewAlive)
{
    osg::ref_ptr<osg::Group> root = new osg::Group;
    osg::ref_ptr<osgViewer::View> view = new osgViewer::View;
    view->getCamera()->setViewport(0, 0, 100, 100);
    osg::ref_ptr<CountingHUD> element = new CountingHUD;
    element->init(root, view);
    osg::observer_ptr<osgViewer::View> observer = view.get();

    view = nullptr;

    EXPECT_FALSE(observer.valid());
}

TEST_F(AbstractHUDTest, GivesAChildOfAHiddenContainerItsSizeAndLeavesItHidden)
{
    auto group = prepared<GroupHUD>(new GroupHUD);
    osg::ref_ptr<CountingHUD> child = new CountingHUD;
    child->init(group);

    EXPECT_FALSE(child->isVisible());
    EXPECT_EQ(child->builds, 0);
    EXPECT_EQ(child->getWidth(), windowWidth);
    EXPECT_EQ(child->getHeight(), windowHeight);
    EXPECT_EQ(group->lines()->getNumChildren(), 0u);
}

TEST_F(AbstractHUDTest, ShowsAChildThatComesToAVisibleContainer)
{
    auto group = shown<GroupHUD>(new GroupHUD);
    osg::ref_ptr<CountingHUD> child = new CountingHUD;
    child->init(group);

    EXPECT_TRUE(child->isVisible());
    EXPECT_EQ(drawableCount(*child), 1);
    EXPECT_TRUE(group->lines()->containsNode(child->getGeode()));
}

TEST_F(AbstractHUDTest, TakesAChildsGeodeOutAndBringsItBackRebuilt)
{
    auto group = shown<GroupHUD>(new GroupHUD);
    osg::ref_ptr<CountingHUD> child = new CountingHUD;
    child->init(group);
    const int builds = child->builds;

    child->hide();
    EXPECT_FALSE(group->lines()->containsNode(child->getGeode()));
    child->show();
    EXPECT_TRUE(group->lines()->containsNode(child->getGeode()));
    EXPECT_EQ(child->builds, builds + 1);
    EXPECT_EQ(drawableCount(*child), 1);
}

TEST_F(AbstractHUDTest, ShowsAndHidesTheChildrenWithTheContainer)
{
    auto group = prepared<GroupHUD>(new GroupHUD);
    osg::ref_ptr<CountingHUD> one = new CountingHUD;
    osg::ref_ptr<CountingHUD> two = new CountingHUD;
    one->init(group);
    two->init(group);

    group->show();
    EXPECT_TRUE(one->isVisible());
    EXPECT_TRUE(two->isVisible());
    EXPECT_TRUE(isInScene(group->overlay()));
    EXPECT_EQ(group->lines()->getNumChildren(), 2u);

    group->hide();
    EXPECT_FALSE(one->isVisible());
    EXPECT_FALSE(two->isVisible());
    EXPECT_FALSE(isInScene(group->overlay()));
}

TEST_F(AbstractHUDTest, ClearsTheChildrenAndForgetsThemButKeepsTheirGeodes)
{
    auto group = shown<GroupHUD>(new GroupHUD);
    osg::ref_ptr<CountingHUD> child = new CountingHUD;
    child->init(group);

    group->clear();
    EXPECT_EQ(drawableCount(*child), 0);
    group->removeChildren();
    EXPECT_EQ(group->childCount(), 0u);
    EXPECT_EQ(group->lines()->getNumChildren(), 1u);
    EXPECT_TRUE(child->isVisible());
}

TEST_F(AbstractHUDTest, DrawsAContainersGroupLikeAnElement)
{
    osg::ref_ptr<GroupHUD> group = new GroupHUD;
    const osg::StateSet* state = group->lines()->getStateSet();

    EXPECT_EQ(state->getMode(GL_BLEND), osg::StateAttribute::ON);
    EXPECT_EQ(state->getMode(GL_DEPTH_TEST), osg::StateAttribute::OFF);
    EXPECT_EQ(state->getBinNumber(), 11);
    EXPECT_EQ(state->getBinName(), "RenderBin");
}

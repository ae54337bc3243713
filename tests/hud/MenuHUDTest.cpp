#include "hud/MenuHUD.h"

#include "frame/GameLoop.h"
#include "hud/HudTest.h"
#include "hud/MenuItemAction.h"
#include "hud/MenuItemFolder.h"
#include "platform/leap/FrameData.h"
#include "support/EventLoop.h"
#include "support/OutputCapture.h"

#include <Leap.h>
#include <QFile>
#include <QKeyEvent>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

/// A menu whose lines a test can read.
class ReadableMenu : public MenuHUD
{
public:
    struct Line
    {
        std::string text;
        float size;
        osg::Vec3 position;
    };

    /// The title first.
    std::vector<Line> lines()
    {
        std::vector<Line> result;
        for (const auto& child : children) {
            if (const osgText::Text* text = textOf(*child))
                result.push_back({text->getText().createUTF8EncodedString(),
                                  text->getCharacterHeight(), text->getPosition()});
        }
        return result;
    }

    std::vector<osg::BoundingBox> extents()
    {
        std::vector<osg::BoundingBox> result;
        for (const auto& child : children)
            if (const osgText::Text* text = textOf(*child))
                result.push_back(text->getBoundingBox());
        return result;
    }

    osg::Group* group_() { return group.get(); }
};

constexpr double pi = 3.14159265358979;

Leap::GestureData circle(double angleToNormal, float progress = 1.0f,
                         Leap::Gesture::State state = Leap::Gesture::STATE_STOP)
{
    Leap::GestureData data;
    data.type = Leap::Gesture::TYPE_CIRCLE;
    data.state = state;
    data.progress = progress;
    data.normal = Leap::Vector(0, 0, -1);
    data.pointable = Leap::Pointable(
        1, Leap::Vector(float(std::sin(angleToNormal)), 0, -float(std::cos(angleToNormal))));
    return data;
}

Leap::GestureData gesture(Leap::Gesture::Type type)
{
    Leap::GestureData data;
    data.type = type;
    data.state = Leap::Gesture::STATE_STOP;
    return data;
}

const Leap::GestureData clockwise = circle(0.2);
const Leap::GestureData counterclockwise = circle(pi - 0.2);
const Leap::GestureData tap = gesture(Leap::Gesture::TYPE_SCREEN_TAP);

class MenuHUDTest : public HudTest
{
protected:
    MenuHUDTest()
        : folder("Menu", nullptr),
          first([this] { picks("first"); }, "First", &folder),
          second([this] { picks("second"); }, "Second", &folder),
          third([this] { picks("third"); }, "Third", &folder),
          menu(new ReadableMenu)
    {
        folder.addItem(&first);
        folder.addItem(&second);
        folder.addItem(&third);
        prepared(menu);
        menu->setRootItem(&folder);
        menu->setCurrentFolder(&folder);
    }

    ~MenuHUDTest() override { GameLoop::resume(); }

    bool presses(int key)
    {
        QKeyEvent event(QEvent::KeyRelease, key, Qt::NoModifier);
        event.ignore();
        menu->onKeyPress(&event);
        return event.isAccepted();
    }

    void makes(std::vector<Leap::GestureData> gestures)
    {
        auto frame = std::make_shared<Leap::FrameData>();
        frame->gestures = std::move(gestures);
        folder.onGestures(Leap::GestureList(frame));
    }

    void picks(const std::string& name)
    {
        picked.push_back(name);
        pausedAtPick = GameLoop::isPaused();
        visibleAtPick = menu->isVisible();
    }

    using Picked = std::vector<std::string>;

    MenuItemFolder folder;
    MenuItemAction first;
    MenuItemAction second;
    MenuItemAction third;
    osg::ref_ptr<ReadableMenu> menu;
    Picked picked;
    bool pausedAtPick = true;
    bool visibleAtPick = true;
};

}  // namespace

TEST_F(MenuHUDTest, PausesTheGameWhileItIsShown)
{
    EXPECT_FALSE(GameLoop::isPaused());
    menu->show();
    EXPECT_TRUE(GameLoop::isPaused());
    EXPECT_TRUE(menu->isVisible());
    menu->hide();
    EXPECT_FALSE(GameLoop::isPaused());
    EXPECT_FALSE(menu->isVisible());
}

TEST_F(MenuHUDTest, ShowsTheTitleAndTheLinesWithTheSelectedOneLarge)
{
    menu->show();
    const auto lines = menu->lines();
    ASSERT_EQ(lines.size(), 4u);

    EXPECT_EQ(lines[0].text, "Menu");
    EXPECT_EQ(lines[0].size, 50.0f);
    EXPECT_EQ(lines[0].position, osg::Vec3(400, 540, 0));
    EXPECT_EQ(lines[1].text, "First");
    EXPECT_EQ(lines[1].size, 50.0f);
    EXPECT_EQ(lines[2].text, "Second");
    EXPECT_EQ(lines[2].size, 40.0f);
    EXPECT_EQ(lines[3].text, "Third");
    EXPECT_EQ(lines[3].size, 40.0f);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(lines[i + 1].position.x(), 400.0f);
        EXPECT_EQ(lines[i + 1].position.y(), float(int(windowHeight * (0.6f - float(i) * 0.1f))));
    }
}

TEST_F(MenuHUDTest, ShrinksAllLinesByOneFactorInAWindowThatIsTooNarrow)
{
    MenuItemAction wide([] {}, "Restart the level", &folder);
    folder.addItem(&wide);
    menu->show();
    for (int width : {480, 320, 240}) {
        SCOPED_TRACE(width);
        menu->resize(width, windowHeight);
        const float large = menu->lines()[0].size;
        for (int selected = 0; selected < 4; ++selected) {
            for (const osg::BoundingBox& extent : menu->extents()) {
                EXPECT_GT(extent.xMin(), 0.0f);
                EXPECT_LT(extent.xMax(), float(width));
            }
            const auto lines = menu->lines();
            EXPECT_EQ(lines[0].size, large) << "the title stays as it is";
            for (int line = 0; line < 4; ++line)
                EXPECT_NEAR(lines[line + 1].size, (line == selected ? 1.0f : 0.8f) * large, 1.0f);
            presses(Qt::Key_Down);
        }
    }
    EXPECT_LT(menu->lines()[0].size, 30.0f);
    menu->resize(windowWidth, windowHeight);
    EXPECT_EQ(menu->lines()[1].size, 50.0f);
}

TEST_F(MenuHUDTest, KeepsItsLinesApartInALowWindow)
{
    menu->show();
    menu->resize(windowWidth, 250);
    const auto extents = menu->extents();
    for (std::size_t line = 2; line < extents.size(); ++line)
        EXPECT_GT(extents[line - 1].yMin() + 4.0f, extents[line].yMax()) << line;
}

TEST_F(MenuHUDTest, MovesTheSelectionRoundAtBothEnds)
{
    menu->show();
    EXPECT_TRUE(presses(Qt::Key_Up));
    EXPECT_EQ(folder.getSelected(), 2);
    EXPECT_EQ(menu->lines()[3].size, 50.0f);
    EXPECT_EQ(menu->lines()[1].size, 40.0f);

    EXPECT_TRUE(presses(Qt::Key_Down));
    EXPECT_EQ(folder.getSelected(), 0);
    EXPECT_TRUE(presses(Qt::Key_Down));
    EXPECT_EQ(folder.getSelected(), 1);
    EXPECT_EQ(menu->lines()[2].size, 50.0f);
}

TEST_F(MenuHUDTest, KeepsTheSelectionWhileClosed)
{
    menu->show();
    presses(Qt::Key_Up);
    menu->hide();
    menu->show();
    const auto lines = menu->lines();
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[3].size, 50.0f);
    EXPECT_EQ(lines[1].size, 40.0f);
}

TEST_F(MenuHUDTest, ClosesAtEscapeAndPicksNothing)
{
    menu->show();
    EXPECT_TRUE(presses(Qt::Key_Escape));
    EXPECT_FALSE(menu->isVisible());
    EXPECT_FALSE(GameLoop::isPaused());
    EXPECT_EQ(picked, Picked());
}

TEST_F(MenuHUDTest, RunsAnActionWithTheMenuClosedAndTheGameGoingOn)
{
    menu->show();
    presses(Qt::Key_Down);
    EXPECT_TRUE(presses(Qt::Key_Return));
    EXPECT_EQ(picked, Picked{"second"});
    EXPECT_FALSE(pausedAtPick);
    EXPECT_FALSE(visibleAtPick);
}

TEST_F(MenuHUDTest, LeavesOtherKeysToOthers)
{
    menu->show();
    for (int key : {Qt::Key_Enter, Qt::Key_Left, Qt::Key_Right, Qt::Key_R, Qt::Key_Space})
        EXPECT_FALSE(presses(key));
    EXPECT_EQ(picked, Picked());
    EXPECT_EQ(folder.getSelected(), 0);
    EXPECT_TRUE(menu->isVisible());
}

TEST_F(MenuHUDTest, OpensAFolderAmongTheLinesAsAPageOfItsOwn)
{
    MenuItemFolder page("More", &folder);
    MenuItemAction inner([this] { picks("inner"); }, "Inner", &page);
    page.addItem(&inner);
    folder.addItem(&page);
    menu->show();
    presses(Qt::Key_Up);
    presses(Qt::Key_Return);

    ASSERT_TRUE(menu->isVisible());
    const auto lines = menu->lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].text, "More");
    EXPECT_EQ(lines[1].text, "Inner");
    presses(Qt::Key_Return);
    EXPECT_EQ(picked, Picked{"inner"});

    menu->show();
    EXPECT_EQ(menu->lines()[0].text, "Menu") << "it opens at its root again";
}

TEST_F(MenuHUDTest, SurvivesAFolderWithoutLines)
{
    MenuItemFolder empty("Empty", nullptr);
    menu->setRootItem(&empty);
    menu->setCurrentFolder(&empty);
    menu->show();
    EXPECT_EQ(menu->lines().size(), 1u);
    for (int key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Return})
        EXPECT_TRUE(presses(key));
    empty.onGestures(Leap::GestureList());
    EXPECT_TRUE(presses(Qt::Key_Escape));
    EXPECT_FALSE(menu->isVisible());
}

TEST_F(MenuHUDTest, SurvivesKeysAndGesturesBeforeItWasEverShown)
{
    for (int key : {Qt::Key_Return, Qt::Key_Escape, Qt::Key_Up, Qt::Key_Down})
        EXPECT_TRUE(presses(key));
    makes({clockwise, tap});
    EXPECT_EQ(picked, Picked());

    osg::ref_ptr<MenuHUD> bare = new MenuHUD;
    prepared(bare);
    bare->show();
    QKeyEvent event(QEvent::KeyRelease, Qt::Key_Return, Qt::NoModifier);
    bare->onKeyPress(&event);
    bare->hide();
}

TEST_F(MenuHUDTest, MovesDownAtAClockwiseCircleAndUpAtAnother)
{
    menu->show();
    makes({clockwise});
    EXPECT_EQ(folder.getSelected(), 1);
    EXPECT_EQ(menu->lines()[2].size, 50.0f);
    makes({counterclockwise, counterclockwise});
    EXPECT_EQ(folder.getSelected(), 2);
    makes({clockwise});
    EXPECT_EQ(folder.getSelected(), 0);
}

TEST_F(MenuHUDTest, TakesAQuarterTurnBetweenFingerAndNormalAsClockwise)
{
    menu->show();
    makes({circle(pi / 2 - 0.001)});
    EXPECT_EQ(folder.getSelected(), 1);
    makes({circle(pi / 2 + 0.001)});
    EXPECT_EQ(folder.getSelected(), 0);

    Leap::GestureData unknownFinger = clockwise;
    unknownFinger.pointable = Leap::Pointable();
    makes({unknownFinger});
    EXPECT_EQ(folder.getSelected(), 1);
}

TEST_F(MenuHUDTest, CountsACircleOnceAtItsEndAndOnlyWhenItIsNearlyWhole)
{
    menu->show();
    makes({circle(0, 3.5f, Leap::Gesture::STATE_START)});
    makes({circle(0, 3.5f, Leap::Gesture::STATE_UPDATE)});
    EXPECT_EQ(folder.getSelected(), 0);
    makes({circle(0, 0.9f)});
    EXPECT_EQ(folder.getSelected(), 0);
    makes({circle(0, 0.91f)});
    EXPECT_EQ(folder.getSelected(), 1);
    makes({circle(0, 7.0f)});
    EXPECT_EQ(folder.getSelected(), 2);
}

TEST_F(MenuHUDTest, PicksTheSelectedLineAtATapWithoutACircleBefore)
{
    menu->show();
    makes({tap});
    EXPECT_EQ(picked, Picked{"first"});
    EXPECT_FALSE(menu->isVisible());
}

TEST_F(MenuHUDTest, ServesTheGesturesOfAFrameInTheirOrder)
{
    menu->show();
    makes({clockwise, tap});
    EXPECT_EQ(picked, Picked{"second"});
}

TEST_F(MenuHUDTest, ServesAGestureThatFollowsThePick)
{
    menu->show();
    makes({tap, clockwise, tap});
    EXPECT_EQ(picked, (Picked{"first", "second"}));
    EXPECT_FALSE(menu->isVisible());
    EXPECT_FALSE(GameLoop::isPaused());
}

TEST_F(MenuHUDTest, IgnoresOtherGestures)
{
    menu->show();
    makes({gesture(Leap::Gesture::TYPE_SWIPE), gesture(Leap::Gesture::TYPE_KEY_TAP),
           gesture(Leap::Gesture::TYPE_INVALID)});
    EXPECT_EQ(picked, Picked());
    EXPECT_EQ(folder.getSelected(), 0);
}

TEST_F(MenuHUDTest, ShowsNothingOfTheLinesThatManyMovesLeftBehind)
{
    menu->show();
    offscreen.draw();
    const Extent before = drawnExtent();
    for (int i = 0; i < 30; ++i)
        presses(Qt::Key_Down);
    const Extent after = drawnExtent();

    EXPECT_EQ(folder.getSelected(), 0);
    EXPECT_GT(menu->group_()->getNumChildren(), 100u);
    EXPECT_EQ(menu->lines().size(), 4u);
    EXPECT_EQ(after.left, before.left);
    EXPECT_EQ(after.right, before.right);
    EXPECT_EQ(after.bottom, before.bottom);
    EXPECT_EQ(after.top, before.top);

    menu->hide();
    EXPECT_TRUE(drawnExtent().isEmpty());
}

TEST_F(MenuHUDTest, HasOnlyTheStagesOfTheLinesThatStandThere)
{
    menu->show();
    for (int i = 0; i < 10; ++i)
        presses(Qt::Key_Down);
    OutputCapture output;

    QFile file("data/textShader.frag");
    ASSERT_TRUE(file.open(QFile::Append | QFile::Unbuffered));
    file.write("\n");

    const std::string notice = "data/textShader.frag was changed\n";
    ASSERT_TRUE(waitUntil([&] { return output.count(notice) > 0; }));
    EXPECT_EQ(output.count("FRAGMENT Shader data/textShader.frag changed\n"), 4);
}

TEST_F(MenuHUDTest, PutsItsLinesAnewWhenTheWindowIsResized)
{
    menu->show();
    offscreen.resizeWindow(400, 300);
    offscreen.draw();
    const auto lines = menu->lines();
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0].position, osg::Vec3(200, 270, 0));
    EXPECT_EQ(lines[1].position.x(), 200.0f);
}

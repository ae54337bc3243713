#include "frame/OsgViewerWidget.h"

#include "frame/GameLoop.h"
#include "frame/KeyListener.h"
#include "frame/MouseListener.h"
#include "platform/osgqt/GraphicsWindowQt.h"
#include "support/EventLoop.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QProcess>
#include <QTimer>
#include <QWheelEvent>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Names = std::vector<std::string>;

/// Writes down what it hears, and accepts it if it shall.
class Listener : public KeyListener, public MouseListener
{
public:
    void keyPressEvent(QKeyEvent* event) override { hears("key press", event); }
    void keyReleaseEvent(QKeyEvent* event) override { hears("key release", event); }
    void mousePressEvent(QMouseEvent* event) override { hears("press", event); }
    void mouseReleaseEvent(QMouseEvent* event) override { hears("release", event); }
    void mouseDoubleClickEvent(QMouseEvent* event) override { hears("double click", event); }
    void mouseMoveEvent(QMouseEvent* event) override { hears("move", event); }
    void wheelEvent(QWheelEvent* event) override { hears("wheel", event); }

    Names heard;
    bool accepts = false;

private:
    void hears(const std::string& name, QEvent* event)
    {
        heard.push_back(name);
        EXPECT_FALSE(event->isAccepted()) << "it is the listener that accepts";
        if (accepts)
            event->accept();
    }
};

class OsgViewerWidgetTest : public testing::Test
{
protected:
    /// True if the event was accepted in the end.
    bool sends(QEvent& event)
    {
        event.accept();
        QCoreApplication::sendEvent(widget.get(), &event);
        return event.isAccepted();
    }

    bool sendsKey(QEvent::Type type, Qt::Key key, bool repeated = false)
    {
        QKeyEvent event(type, key, Qt::NoModifier, QString(), repeated);
        return sends(event);
    }

    bool sendsMouse(QEvent::Type type, const QPointF& position = QPointF(10, 20))
    {
        QMouseEvent event(type, position, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        return sends(event);
    }

    bool sendsWheel()
    {
        QWheelEvent event(QPointF(10, 20), QPointF(10, 20), QPoint(), QPoint(0, 120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        return sends(event);
    }

    /// The kinds of event that have come to OpenSceneGraph since the last call.
    std::vector<osg::ref_ptr<osgGA::GUIEventAdapter>> queued()
    {
        osgGA::EventQueue::Events events;
        widget->getGraphicsWindow()->getEventQueue()->takeEvents(events);
        std::vector<osg::ref_ptr<osgGA::GUIEventAdapter>> result;
        for (const osg::ref_ptr<osgGA::Event>& event : events)
            result.push_back(event->asGUIEventAdapter());
        return result;
    }

    osg::ref_ptr<osgViewer::View> addsView()
    {
        osg::ref_ptr<osgViewer::View> view = new osgViewer::View;
        view->getCamera()->setGraphicsContext(widget->getGraphicsWindow());
        view->getCamera()->setViewport(0, 0, 800, 600);
        view->getCamera()->setProjectionMatrixAsPerspective(30.0, 4.0 / 3.0, 1.0, 100.0);
        widget->addView(view);
        return view;
    }

    void listens()
    {
        for (Listener* listener : {&first, &second}) {
            widget->addKeyListener(listener);
            widget->addMouseListener(listener);
        }
    }

    std::unique_ptr<OsgViewerWidget> widget = std::make_unique<OsgViewerWidget>();
    Listener first;
    Listener second;
};

TEST(SoftwareRenderer, IsToldByTheNameOfTheDriver)
{
    EXPECT_TRUE(isSoftwareRenderer("llvmpipe (LLVM 15.0.6, 256 bits)"));
    EXPECT_TRUE(isSoftwareRenderer("softpipe"));
    EXPECT_TRUE(isSoftwareRenderer("Software Rasterizer"));
    EXPECT_FALSE(isSoftwareRenderer("AMD Radeon RX 580 Series (polaris10, LLVM 15.0.6)"));
    EXPECT_FALSE(isSoftwareRenderer("Mesa Intel(R) UHD Graphics 620 (KBL GT2)"));
    EXPECT_FALSE(isSoftwareRenderer(nullptr));
}

TEST_F(OsgViewerWidgetTest, LeavesEventsUnacceptedWithoutListenersButFeedsTheViewer)
{
    queued();
    EXPECT_FALSE(sendsKey(QEvent::KeyPress, Qt::Key_Escape));
    EXPECT_FALSE(sendsKey(QEvent::KeyRelease, Qt::Key_Escape));
    EXPECT_FALSE(sendsMouse(QEvent::MouseButtonPress));
    EXPECT_FALSE(sendsMouse(QEvent::MouseMove));
    EXPECT_FALSE(sendsMouse(QEvent::MouseButtonRelease));
    EXPECT_FALSE(sendsMouse(QEvent::MouseButtonDblClick));
    EXPECT_FALSE(sendsWheel());
    std::vector<int> types;
    for (const auto& event : queued())
        types.push_back(event->getEventType());
    using Adapter = osgGA::GUIEventAdapter;
    EXPECT_EQ(types,
              (std::vector<int>{Adapter::KEYDOWN, Adapter::KEYUP, Adapter::PUSH, Adapter::DRAG,
                                Adapter::RELEASE, Adapter::DOUBLECLICK, Adapter::SCROLL}));
}

TEST_F(OsgViewerWidgetTest, PassesEveryEventOnToAllWhoDoNotAccept)
{
    listens();
    EXPECT_FALSE(sendsKey(QEvent::KeyPress, Qt::Key_A));
    EXPECT_FALSE(sendsKey(QEvent::KeyRelease, Qt::Key_A));
    EXPECT_FALSE(sendsMouse(QEvent::MouseButtonPress));
    EXPECT_FALSE(sendsMouse(QEvent::MouseButtonRelease));
    EXPECT_FALSE(sendsMouse(QEvent::MouseButtonDblClick));
    EXPECT_FALSE(sendsMouse(QEvent::MouseMove));
    EXPECT_FALSE(sendsWheel());
    const Names all{"key press",    "key release", "press", "release",
                    "double click", "move",        "wheel"};
    EXPECT_EQ(first.heard, all);
    EXPECT_EQ(second.heard, all);
}

TEST_F(OsgViewerWidgetTest, EndsTheWalkAtTheFirstWhoAccepts)
{
    listens();
    first.accepts = true;
    EXPECT_TRUE(sendsKey(QEvent::KeyPress, Qt::Key_A));
    EXPECT_TRUE(sendsKey(QEvent::KeyRelease, Qt::Key_A));
    EXPECT_TRUE(sendsMouse(QEvent::MouseButtonPress));
    EXPECT_TRUE(sendsMouse(QEvent::MouseButtonRelease));
    EXPECT_TRUE(sendsMouse(QEvent::MouseButtonDblClick));
    EXPECT_TRUE(sendsMouse(QEvent::MouseMove));
    EXPECT_TRUE(sendsWheel());
    EXPECT_EQ(first.heard.size(), 7u);
    EXPECT_TRUE(second.heard.empty());
}

TEST_F(OsgViewerWidgetTest, AsksTheSecondWhenTheFirstDoesNotAccept)
{
    listens();
    second.accepts = true;
    EXPECT_TRUE(sendsKey(QEvent::KeyPress, Qt::Key_A));
    EXPECT_EQ(first.heard, Names{"key press"});
    EXPECT_EQ(second.heard, Names{"key press"});
}

TEST_F(OsgViewerWidgetTest, TellsAListenerThatStandsTwiceTwice)
{
    widget->addKeyListener(&first);
    widget->addKeyListener(&first);
    sendsKey(QEvent::KeyPress, Qt::Key_A);
    EXPECT_EQ(first.heard.size(), 2u);
}

TEST_F(OsgViewerWidgetTest, TogglesFullScreenWhenF11IsReleased)
{
    listens();
    widget->show();
    EXPECT_FALSE(sendsKey(QEvent::KeyPress, Qt::Key_F11));
    EXPECT_EQ(first.heard, Names{"key press"}) << "the press is a press like any other";
    EXPECT_FALSE(widget->isFullScreen());
    EXPECT_TRUE(sendsKey(QEvent::KeyRelease, Qt::Key_F11, true));
    EXPECT_FALSE(widget->isFullScreen()) << "held down, not released";
    EXPECT_TRUE(sendsKey(QEvent::KeyRelease, Qt::Key_F11));
    EXPECT_TRUE(widget->isFullScreen());
    EXPECT_TRUE(sendsKey(QEvent::KeyRelease, Qt::Key_F11));
    EXPECT_FALSE(widget->isFullScreen());
    EXPECT_TRUE(widget->isVisible());
    EXPECT_EQ(first.heard, Names{"key press"}) << "no release of it is passed on";
}

namespace {

class Keys : public KeyListener
{
public:
    void keyPressEvent(QKeyEvent*) override {}
    void keyReleaseEvent(QKeyEvent* event) override
    {
        released = event->key();
        repeated = event->isAutoRepeat();
        event->accept();
    }
    int released = 0;
    bool repeated = false;
};

constexpr quint32 scanCode = 21;

}  // namespace

TEST_F(OsgViewerWidgetTest, ReleasesTheKeyThatWasPressed)
{
    Keys keys;
    widget->addKeyListener(&keys);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Plus, Qt::ShiftModifier, scanCode, 0, 0);
    sends(press);
    // Shift is let go of first: the same key bears another name now.
    QKeyEvent release(QEvent::KeyRelease, Qt::Key_Equal, Qt::NoModifier, scanCode, 0, 0);
    EXPECT_TRUE(sends(release));
    EXPECT_EQ(keys.released, Qt::Key_Plus);
    QKeyEvent another(QEvent::KeyRelease, Qt::Key_Equal, Qt::NoModifier, scanCode, 0, 0);
    sends(another);
    EXPECT_EQ(keys.released, Qt::Key_Equal) << "and is forgotten then";
}

TEST_F(OsgViewerWidgetTest, KeepsTheKeyThatWasPressedWhileItRepeats)
{
    Keys keys;
    widget->addKeyListener(&keys);
    const auto event = [](QEvent::Type type, Qt::Key key, bool repeated) {
        return QKeyEvent(type, key, Qt::NoModifier, scanCode, 0, 0, QString(), repeated);
    };
    QKeyEvent press = event(QEvent::KeyPress, Qt::Key_Equal, false);
    sends(press);
    // Shift comes down meanwhile, and goes up again.
    for (const Qt::Key key : {Qt::Key_Plus, Qt::Key_Equal}) {
        QKeyEvent repeatedRelease = event(QEvent::KeyRelease, key, true);
        sends(repeatedRelease);
        EXPECT_EQ(keys.released, Qt::Key_Equal);
        EXPECT_TRUE(keys.repeated) << "it is still held";
        QKeyEvent repeatedPress = event(QEvent::KeyPress, key, true);
        sends(repeatedPress);
    }
    QKeyEvent release = event(QEvent::KeyRelease, Qt::Key_Plus, false);
    sends(release);
    EXPECT_EQ(keys.released, Qt::Key_Equal);
    EXPECT_FALSE(keys.repeated);
}

TEST_F(OsgViewerWidgetTest, ReleasesTheHeldKeysOnceWhenItLosesTheFocus)
{
    Keys keys;
    widget->addKeyListener(&keys);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Left, Qt::NoModifier, scanCode, 0, 0);
    sends(press);
    QFocusEvent leaves(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    sends(leaves);
    EXPECT_EQ(keys.released, Qt::Key_Left);
    EXPECT_FALSE(keys.repeated);
    keys.released = 0;
    sends(leaves);
    EXPECT_EQ(keys.released, 0);
}

TEST_F(OsgViewerWidgetTest, LetsGoOfNothingButArrowsWhenItLosesTheFocus)
{
    Keys keys;
    widget->addKeyListener(&keys);
    widget->show();
    QFocusEvent leaves(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    for (const Qt::Key key :
         {Qt::Key_R, Qt::Key_Plus, Qt::Key_Minus, Qt::Key_Escape, Qt::Key_Return, Qt::Key_F11}) {
        SCOPED_TRACE(key);
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, scanCode, 0, 0);
        sends(press);
        sends(leaves);
        QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, scanCode, 0, 0);
        EXPECT_FALSE(sends(release)) << "what was begun elsewhere in between ends here";
        EXPECT_EQ(keys.released, 0);
        EXPECT_FALSE(widget->isFullScreen());
    }
    for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Up, Qt::Key_Right, Qt::Key_Down}) {
        SCOPED_TRACE(key);
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, scanCode, 0, 0);
        sends(press);
        sends(leaves);
        EXPECT_EQ(keys.released, key);
    }
}

TEST_F(OsgViewerWidgetTest, PassesNoRepeatsOnOfAKeyWhosePressItHasNotSeen)
{
    listens();
    const auto event = [](QEvent::Type type, bool repeated) {
        return QKeyEvent(type, Qt::Key_Left, Qt::NoModifier, scanCode, 0, 0, QString(), repeated);
    };
    QKeyEvent repeat = event(QEvent::KeyPress, true);
    EXPECT_FALSE(sends(repeat));
    EXPECT_EQ(first.heard, Names{});
    QKeyEvent press = event(QEvent::KeyPress, false);
    sends(press);
    sends(repeat);
    EXPECT_EQ(first.heard, (Names{"key press", "key press"}));
}

TEST_F(OsgViewerWidgetTest, ForgetsListenersThatAreTakenAway)
{
    listens();
    widget->addKeyListener(&first);
    widget->removeKeyListener(&first);
    widget->removeMouseListener(&second);
    sendsKey(QEvent::KeyPress, Qt::Key_A);
    sendsMouse(QEvent::MouseButtonPress);
    EXPECT_EQ(first.heard, Names{"press"}) << "wherever it stood";
    EXPECT_EQ(second.heard, Names{"key press"});
    widget->removeKeyListener(&first);
}

TEST_F(OsgViewerWidgetTest, WaitsForTheWorldToChangeItsCameras)
{
    const osg::ref_ptr<osgViewer::View> view = addsView();
    widget->resize(200, 100);
    widget->show();
    QCoreApplication::processEvents();
    const osg::GraphicsContext::Traits* traits = widget->getGraphicsWindow()->getTraits();
    const auto changesMeanwhile = [&](const std::function<void()>& change) {
        const auto now = [traits] {
            return std::make_pair(traits->width, traits->x);
        };
        const auto before = now();
        auto meanwhile = before;
        std::atomic<bool> locked{false};
        std::thread other([&] {
            const GameLoop::Lock worldLock;
            locked = true;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            meanwhile = now();
        });
        while (!locked)
            std::this_thread::yield();
        change();
        other.join();
        EXPECT_NE(now(), before);
        return meanwhile != before;
    };
    EXPECT_FALSE(changesMeanwhile([&] { widget->resize(320, 120); }));
    EXPECT_FALSE(changesMeanwhile([&] {
        QMoveEvent move(QPoint(70, 60), QPoint(0, 0));
        sends(move);
    }));
}

TEST_F(OsgViewerWidgetTest, FillsTheScreenByAnF11ThatIsReleasedUnderAnotherName)
{
    Keys keys;
    widget->addKeyListener(&keys);
    widget->show();
    QKeyEvent press(QEvent::KeyPress, Qt::Key_F11, Qt::NoModifier, scanCode, 0, 0);
    sends(press);
    QKeyEvent release(QEvent::KeyRelease, Qt::Key_F9, Qt::NoModifier, scanCode, 0, 0);
    EXPECT_TRUE(sends(release));
    EXPECT_TRUE(widget->isFullScreen());
    EXPECT_EQ(keys.released, 0);
}

TEST_F(OsgViewerWidgetTest, FeedsTheReleaseOfF11ToTheViewer)
{
    queued();
    sendsKey(QEvent::KeyRelease, Qt::Key_F11);
    const auto events = queued();
    ASSERT_FALSE(events.empty());
    EXPECT_EQ(events.front()->getEventType(), osgGA::GUIEventAdapter::KEYUP);
    EXPECT_EQ(events.front()->getKey(), osgGA::GUIEventAdapter::KEY_F11);
}

TEST_F(OsgViewerWidgetTest, TellsTheViewerAKeyByTheViewersNameForIt)
{
    using Event = osgGA::GUIEventAdapter;
    struct Row
    {
        Qt::Key pressed;
        QString text;
        int told;
    };
    for (const Row& row : {Row{Qt::Key_Left, "", Event::KEY_Left},
                           Row{Qt::Key_Right, "", Event::KEY_Right},
                           Row{Qt::Key_Up, "", Event::KEY_Up},
                           Row{Qt::Key_Down, "", Event::KEY_Down},
                           Row{Qt::Key_PageUp, "", Event::KEY_Page_Up},
                           Row{Qt::Key_PageDown, "", Event::KEY_Page_Down},
                           Row{Qt::Key_Home, "", Event::KEY_Home},
                           Row{Qt::Key_End, "", Event::KEY_End},
                           Row{Qt::Key_Delete, "", Event::KEY_Delete},
                           Row{Qt::Key_Return, "\r", Event::KEY_Return},
                           Row{Qt::Key_Enter, "\r", Event::KEY_KP_Enter},
                           Row{Qt::Key_Escape, "\x1b", Event::KEY_Escape},
                           Row{Qt::Key_Backspace, "\b", Event::KEY_BackSpace},
                           Row{Qt::Key_Tab, "\t", Event::KEY_Tab},
                           Row{Qt::Key_Shift, "", Event::KEY_Shift_L},
                           Row{Qt::Key_Control, "", Event::KEY_Control_L},
                           Row{Qt::Key_Alt, "", Event::KEY_Alt_L},
                           Row{Qt::Key_Meta, "", Event::KEY_Super_L},
                           Row{Qt::Key_CapsLock, "", Event::KEY_Caps_Lock},
                           Row{Qt::Key_F35, "", Event::KEY_F35},
                           Row{Qt::Key_Q, "q", 'q'},
                           Row{Qt::Key_Q, "Q", 'Q'}}) {
        SCOPED_TRACE(row.pressed);
        queued();
        QKeyEvent press(QEvent::KeyPress, row.pressed, Qt::NoModifier, row.text);
        sends(press);
        const auto events = queued();
        ASSERT_EQ(events.size(), 1u);
        EXPECT_EQ(events[0]->getKey(), row.told);
    }
}

TEST_F(OsgViewerWidgetTest, TellsTheViewerTheModifiersOfAKey)
{
    using Event = osgGA::GUIEventAdapter;
    struct Row
    {
        Qt::KeyboardModifiers held;
        int told;
    };
    for (const Row& row :
         {Row{Qt::NoModifier, 0}, Row{Qt::ShiftModifier, Event::MODKEY_SHIFT},
          Row{Qt::ControlModifier, Event::MODKEY_CTRL}, Row{Qt::AltModifier, Event::MODKEY_ALT},
          Row{Qt::ShiftModifier | Qt::AltModifier, Event::MODKEY_SHIFT | Event::MODKEY_ALT}}) {
        SCOPED_TRACE(row.told);
        queued();
        QKeyEvent press(QEvent::KeyPress, Qt::Key_F2, row.held);
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_F2, row.held);
        sends(press);
        sends(release);
        const auto events = queued();
        ASSERT_EQ(events.size(), 2u);
        for (const auto& event : events) {
            EXPECT_EQ(event->getModKeyMask(), row.told);
            EXPECT_EQ(event->getKey(), Event::KEY_F2);
        }
    }
}

TEST_F(OsgViewerWidgetTest, TellsTheViewerWhichButtonIsPressed)
{
    using Event = osgGA::GUIEventAdapter;
    struct Row
    {
        Qt::MouseButton pressed;
        int told;
    };
    for (const Row& row : {Row{Qt::LeftButton, Event::LEFT_MOUSE_BUTTON},
                           Row{Qt::MiddleButton, Event::MIDDLE_MOUSE_BUTTON},
                           Row{Qt::RightButton, Event::RIGHT_MOUSE_BUTTON}}) {
        SCOPED_TRACE(row.told);
        queued();
        QMouseEvent press(QEvent::MouseButtonPress, QPointF(10, 20), row.pressed, row.pressed,
                          Qt::NoModifier);
        QMouseEvent release(QEvent::MouseButtonRelease, QPointF(10, 20), row.pressed, Qt::NoButton,
                            Qt::NoModifier);
        sends(press);
        sends(release);
        const auto events = queued();
        ASSERT_EQ(events.size(), 2u);
        EXPECT_EQ(events[0]->getEventType(), Event::PUSH);
        EXPECT_EQ(events[1]->getEventType(), Event::RELEASE);
        for (const auto& event : events)
            EXPECT_EQ(event->getButton(), row.told);
    }
}

TEST_F(OsgViewerWidgetTest, TellsTheViewerTheWheelsFourWays)
{
    using Event = osgGA::GUIEventAdapter;
    struct Row
    {
        QPoint turned;
        Event::ScrollingMotion told;
    };
    for (const Row& row :
         {Row{{0, 120}, Event::SCROLL_UP}, Row{{0, -120}, Event::SCROLL_DOWN},
          Row{{120, 0}, Event::SCROLL_LEFT}, Row{{-120, 0}, Event::SCROLL_RIGHT}}) {
        SCOPED_TRACE(row.told);
        queued();
        QWheelEvent wheel(QPointF(10, 20), QPointF(10, 20), QPoint(), row.turned, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        sends(wheel);
        const auto events = queued();
        ASSERT_EQ(events.size(), 1u);
        EXPECT_EQ(events[0]->getScrollingMotion(), row.told);
    }
    // A touchpad tells the begin and the end of a scroll, too.
    QWheelEvent still(QPointF(10, 20), QPointF(10, 20), QPoint(), QPoint(), Qt::NoButton,
                      Qt::NoModifier, Qt::ScrollEnd, false);
    sends(still);
    EXPECT_TRUE(queued().empty());
}

TEST_F(OsgViewerWidgetTest, StaysOpenAtEscape)
{
    const osg::ref_ptr<osgViewer::View> view = addsView();
    widget->show();
    sendsKey(QEvent::KeyPress, Qt::Key_Escape);
    sendsKey(QEvent::KeyRelease, Qt::Key_Escape);
    widget->frame();
    EXPECT_FALSE(widget->done());
    EXPECT_TRUE(widget->isVisible());
}

TEST_F(OsgViewerWidgetTest, EndsTheEventLoopWhenItIsClosed)
{
    widget->show();
    QTimer::singleShot(0, widget.get(), &QWidget::close);
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_FALSE(widget->isVisible());
}

TEST_F(OsgViewerWidgetTest, DrawsAFrameWhenItIsPainted)
{
    const osg::ref_ptr<osgViewer::View> view = addsView();
    widget->resize(64, 48);
    widget->show();
    ASSERT_TRUE(waitUntil([&] { return widget->getFrameStamp()->getFrameNumber() > 0; }));
    const unsigned int before = widget->getFrameStamp()->getFrameNumber();
    widget->repaint();
    EXPECT_EQ(widget->getFrameStamp()->getFrameNumber(), before + 1);
    EXPECT_EQ(widget->getFrameStamp()->getSimulationTime(),
              widget->getFrameStamp()->getReferenceTime());
}

TEST_F(OsgViewerWidgetTest, DrawsOnTheCallersThreadForShadersThatWantUniforms)
{
    EXPECT_EQ(widget->getThreadingModel(), osgViewer::ViewerBase::SingleThreaded);
    EXPECT_EQ(widget->getKeyEventSetsDone(), 0);
    const osg::State* state = widget->getGraphicsWindow()->getState();
    EXPECT_TRUE(state->getUseModelViewAndProjectionUniforms());
    EXPECT_TRUE(state->getUseVertexAttributeAliasing());
    EXPECT_TRUE(widget->format().depth());
    EXPECT_TRUE(widget->format().stencil());
    EXPECT_TRUE(widget->format().doubleBuffer());
}

TEST_F(OsgViewerWidgetTest, TellsTheViewerSizesAndPlacesInDevicePixels)
{
    const double ratio = widget->devicePixelRatioF();
    RecordProperty("ratio", std::to_string(ratio));
    if (qEnvironmentVariableIsSet("QT_SCALE_FACTOR"))
        ASSERT_EQ(ratio, qEnvironmentVariable("QT_SCALE_FACTOR").toDouble());
    const osg::ref_ptr<osgViewer::View> view = addsView();
    widget->show();
    queued();
    widget->resize(320, 120);
    const int width = int(std::lround(320 * ratio));
    const int height = int(std::lround(120 * ratio));
    bool told = false;
    for (const auto& event : queued())
        if (event->getEventType() == osgGA::GUIEventAdapter::RESIZE)
            told = event->getWindowWidth() == width && event->getWindowHeight() == height;
    EXPECT_TRUE(told);
    EXPECT_EQ(widget->getGraphicsWindow()->getTraits()->width, width);
    EXPECT_EQ(widget->getGraphicsWindow()->getTraits()->height, height);
    QMoveEvent move(QPoint(40, 30), QPoint());
    QCoreApplication::sendEvent(widget.get(), &move);
    EXPECT_EQ(widget->getGraphicsWindow()->getTraits()->x, std::lround(40 * ratio));
    EXPECT_EQ(widget->getGraphicsWindow()->getTraits()->y, std::lround(30 * ratio));
    EXPECT_EQ(widget->getGraphicsWindow()->getTraits()->width, width);
    EXPECT_EQ(view->getCamera()->getViewport()->width(), width);
    EXPECT_EQ(view->getCamera()->getViewport()->height(), height);
    double fieldOfView = 0.0;
    double shape = 0.0;
    double nearPlane = 0.0;
    double farPlane = 0.0;
    view->getCamera()->getProjectionMatrixAsPerspective(fieldOfView, shape, nearPlane, farPlane);
    EXPECT_NEAR(fieldOfView, 30.0, 1e-6) << "the height's angle stays";
    EXPECT_NEAR(shape, 320.0 / 120.0, 1e-6);

    sendsMouse(QEvent::MouseMove, QPointF(100, 30));
    const auto events = queued();
    ASSERT_FALSE(events.empty());
    EXPECT_NEAR(events.back()->getX(), 100 * ratio, 0.01);
    EXPECT_NEAR(events.back()->getY(), 30 * ratio, 0.01);
}

TEST_F(OsgViewerWidgetTest, DoesTheSameOnAScreenOfTwoDevicePixelsAPoint)
{
    if (qEnvironmentVariableIsSet("QT_SCALE_FACTOR"))
        return;  // inside the run below
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_SCALE_FACTOR", "2");
    process.setProcessEnvironment(environment);
    process.start(QCoreApplication::applicationFilePath(),
                  {"--gtest_filter=OsgViewerWidgetTest.TellsTheViewerSizesAndPlaces*"});
    ASSERT_TRUE(process.waitForFinished(60000));
    const std::string output = process.readAllStandardOutput().toStdString();
    EXPECT_EQ(process.exitCode(), 0) << output;
    EXPECT_NE(output.find("[  PASSED  ] 1 test."), std::string::npos) << output;
}

TEST_F(OsgViewerWidgetTest, TakesTheKeyboardsFocus)
{
    EXPECT_EQ(widget->focusPolicy(), Qt::StrongFocus);
    widget->show();
    widget->activateWindow();
    widget->getGraphicsWindow()->grabFocus();
    EXPECT_TRUE(waitUntil([&] {
        widget->activateWindow();
        return widget->isActiveWindow() && widget->hasFocus();
    }));
}

TEST_F(OsgViewerWidgetTest, ComesToTheFront)
{
    struct Raises : QObject
    {
        bool eventFilter(QObject*, QEvent* event) override
        {
            count += event->type() == QEvent::ZOrderChange;
            return false;
        }
        int count = 0;
    } raises;
    widget->installEventFilter(&raises);
    widget->getGraphicsWindow()->raiseWindow();
    EXPECT_EQ(raises.count, 1);
}

TEST_F(OsgViewerWidgetTest, KeepsTheWindowThatItDrawsIn)
{
    EXPECT_EQ(widget->getGraphicsWindow()->getGLWidget(), widget.get());
    osg::ref_ptr<osgQt::GraphicsWindowQt> window = widget->getGraphicsWindow();
    EXPECT_TRUE(window->valid());
    widget.reset();
    EXPECT_FALSE(window->valid()) << "a window without its widget draws nothing";
}

}  // namespace

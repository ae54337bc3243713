#include "frame/GameLoop.h"

#include "frame/OsgViewerWidget.h"
#include "game/GravlinApplication.h"
#include "platform/osgqt/GraphicsWindowQt.h"
#include "support/EventLoop.h"
#include "support/SleepingThread.h"

#include <QAbstractEventDispatcher>
#include <QElapsedTimer>
#include <QThread>
#include <fmod.hpp>
#include <gtest/gtest.h>
#include <osg/FrameStamp>
#include <osg/NodeCallback>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

// The linker sends the calls of FMOD::System::update here.
extern "C" {
FMOD_RESULT __real__ZN4FMOD6System6updateEv(FMOD::System* system);
FMOD_RESULT __wrap__ZN4FMOD6System6updateEv(FMOD::System* system);
}

namespace {

constexpr unsigned int bodyId = 1;
constexpr int width = 64;   // of the window, pixels
constexpr int height = 48;  // of the window, pixels

/// A game of nothing but one body that flies along x at one unit a second.
class LoopApplication : public GravlinApplication
{
public:
    LoopApplication()
    {
        createScene(osg::Vec3f());
        createMaterial("holz", 0.2f, 0.05f, 0.0f);
        createSphere(bodyId, 0.3, 1.0, "holz", 1, 1, 1);
        setLinearVelocity(bodyId, osg::Vec3f(1.0f, 0.0f, 0.0f), true);
    }

    void update() override
    {
        ++updates;
        happened.emplace_back("update");
        pathAtUpdate = path();
    }

    void syncTransforms() override
    {
        happened.emplace_back("transforms");
        pathAtSync = path();
        GravlinApplication::syncTransforms();
    }

    int frameRate() override { return rate; }

    float path() { return actors.at(bodyId)->getGlobalPose().p.x; }

    int rate = 50;
    int updates = 0;
    float pathAtUpdate = 0.0f;
    float pathAtSync = 0.0f;
    std::vector<std::string> happened;
};

int soundUpdates = 0;

class OnFrame : public osg::NodeCallback
{
public:
    explicit OnFrame(std::function<void()> reaction) : action(std::move(reaction)) {}

    void operator()(osg::Node*, osg::NodeVisitor*) override { action(); }

private:
    std::function<void()> action;
};

/// A loop that nobody ticks but the test. The clock that interval tasks read is the stamp of the
/// frame before, which the test sets as it likes.
class GameLoopTest : public testing::Test
{
protected:
    GameLoopTest() : widget(new OsgViewerWidget), application(new LoopApplication)
    {
        GameLoop::instance();  // belongs to the thread that first asks for it
        widget->resize(width, height);
        application->getCamera()->setGraphicsContext(widget->getGraphicsWindow());
        application->getCamera()->setViewport(0, 0, width, height);
        application->setSceneData(scene);
        widget->addView(application);
        widget->show();
        QCoreApplication::processEvents();
    }

    ~GameLoopTest() override
    {
        GameLoop::resume();
        GameLoop::attach(nullptr);
    }

    void attach() { GameLoop::attach(application); }

    static void tick() { GameLoop::instance()->tick(); }

    void tickAt(double seconds)
    {
        GameLoop::frameStamp()->setSimulationTime(seconds);
        tick();
    }

    /// Calls `action` when a frame is drawn.
    void atFrame(const std::function<void()>& action)
    {
        scene->setUpdateCallback(new OnFrame(action));
    }

    osg::ref_ptr<osg::Group> scene = new osg::Group;
    std::unique_ptr<OsgViewerWidget> widget;
    LoopApplication* application;  // the widget's viewer holds it
};

struct Counter
{
    int runs = 0;
    GameLoop::Task task = [this] {
        ++runs;
    };
};

TEST_F(GameLoopTest, DoesNothingWithoutAnApplication)
{
    std::atomic<bool> held{false};
    std::atomic<bool> ticked{false};
    bool inTime = false;
    std::thread holder([&] {
        const GameLoop::Lock worldLock;
        held = true;
        QElapsedTimer clock;
        clock.start();
        while (!ticked && clock.elapsed() < 20000)
            std::this_thread::yield();
        inTime = ticked;
    });
    while (!held)
        std::this_thread::yield();
    Counter counter;
    GameLoop::addFrameTask(&counter.task);
    tick();
    ticked = true;
    holder.join();
    EXPECT_TRUE(inTime) << "the tick waited for the lock";
    EXPECT_EQ(GameLoop::frameTaskCount(), 0u) << "the registration still waits";

    attach();
    tick();
    EXPECT_EQ(counter.runs, 1);
    GameLoop::removeFrameTask(&counter.task);
    tick();
}

TEST_F(GameLoopTest, GoesThroughATickInOneOrder)
{
    attach();
    GameLoop::Task frameTask = [this] {
        application->happened.emplace_back("frame task");
    };
    GameLoop::Task intervalTask = [this] {
        application->happened.emplace_back("interval task");
    };
    GameLoop::addFrameTask(&frameTask);
    GameLoop::addIntervalTask(&intervalTask, 1.0);
    atFrame([this] { application->happened.emplace_back("frame"); });
    tickAt(0.5);
    application->happened.clear();
    const float before = application->path();
    tickAt(1.0);
    EXPECT_EQ(application->happened, (std::vector<std::string>{"frame task", "interval task",
                                                               "update", "transforms", "frame"}));
    EXPECT_EQ(application->pathAtUpdate, before) << "the step comes after the update";
    EXPECT_NEAR(application->pathAtSync - before, 0.02f, 1e-5f) << "and before the transforms";
    GameLoop::removeFrameTask(&frameTask);
    GameLoop::removeIntervalTask(&intervalTask, 1.0);
    tick();
}

TEST_F(GameLoopTest, RunsATaskThatATaskAddsFromTheNextTickOn)
{
    attach();
    Counter added;
    GameLoop::Task adder = [&] {
        GameLoop::addFrameTask(&added.task);
    };
    GameLoop::addFrameTask(&adder);
    tick();
    EXPECT_EQ(added.runs, 0);
    GameLoop::removeFrameTask(&adder);
    tick();
    EXPECT_EQ(added.runs, 1);
    GameLoop::removeFrameTask(&added.task);
    tick();
}

TEST_F(GameLoopTest, FinishesTheWalkInWhichATaskIsRemoved)
{
    attach();
    int firstRuns = 0;
    int secondRuns = 0;
    GameLoop::Task first;
    GameLoop::Task second;
    // Whichever comes first takes the other out.
    first = [&] {
        ++firstRuns;
        GameLoop::removeFrameTask(&second);
    };
    second = [&] {
        ++secondRuns;
        GameLoop::removeFrameTask(&first);
    };
    GameLoop::addFrameTask(&first);
    GameLoop::addFrameTask(&second);
    for (int i = 0; i < 3; ++i)
        tick();
    EXPECT_EQ(firstRuns, 1);
    EXPECT_EQ(secondRuns, 1);
}

TEST_F(GameLoopTest, HoldsAFrameTaskOnlyOnce)
{
    attach();
    Counter counter;
    GameLoop::addFrameTask(&counter.task);
    GameLoop::addFrameTask(&counter.task);
    tick();
    EXPECT_EQ(counter.runs, 1);
    GameLoop::removeFrameTask(&counter.task);
    tick();
    EXPECT_EQ(counter.runs, 1);
}

TEST_F(GameLoopTest, RunsFrameTasksInTheOrderOfTheirRegistrationWhereverTheyLie)
{
    attach();
    std::vector<GameLoop::Task> tasks(100);
    std::vector<GameLoop::Task*> places(tasks.size());
    std::transform(tasks.begin(), tasks.end(), places.begin(),
                   [](GameLoop::Task& task) { return &task; });
    std::vector<GameLoop::Task*> run;
    for (int i = 0; i < 2; ++i) {
        for (GameLoop::Task* place : places) {
            *place = [&run, place] {
                run.push_back(place);
            };
            GameLoop::addFrameTask(place);
        }
        run.clear();
        tick();
        EXPECT_EQ(run, places);
        for (GameLoop::Task* place : places)
            GameLoop::removeFrameTask(place);
        tick();
        std::reverse(places.begin(), places.end());
    }
}

TEST_F(GameLoopTest, TellsTasksApartByTheirAddress)
{
    attach();
    int runs = 0;
    GameLoop::Task first = [&] {
        ++runs;
    };
    GameLoop::Task second = first;
    GameLoop::addFrameTask(&first);
    GameLoop::addFrameTask(&second);
    tick();
    EXPECT_EQ(runs, 2);
    GameLoop::removeFrameTask(&first);
    tick();
    EXPECT_EQ(runs, 3);
    GameLoop::removeFrameTask(&second);
    GameLoop::removeFrameTask(&second);
    tick();
    EXPECT_EQ(runs, 3);
}

TEST_F(GameLoopTest, RunsAnIntervalTaskAsOftenAsItIsRegistered)
{
    attach();
    Counter counter;
    GameLoop::addIntervalTask(&counter.task, 1.0);
    GameLoop::addIntervalTask(&counter.task, 1.0);
    tickAt(0.5);
    EXPECT_EQ(counter.runs, 0);
    tickAt(1.0);
    EXPECT_EQ(counter.runs, 2);
    GameLoop::removeIntervalTask(&counter.task, 1.0);
    tickAt(2.0);
    EXPECT_EQ(counter.runs, 2);
    EXPECT_EQ(GameLoop::intervalTaskCount(), 0u);
}

TEST_F(GameLoopTest, GoesOnWithTheOtherTasksOfAnIntervalWhenOneIsRemoved)
{
    attach();
    Counter goes;
    Counter stays;
    GameLoop::addIntervalTask(&goes.task, 1.0);
    GameLoop::addIntervalTask(&stays.task, 1.0);
    tickAt(0.0);
    GameLoop::removeIntervalTask(&goes.task, 1.0);
    tickAt(1.5);
    EXPECT_EQ(goes.runs, 0);
    EXPECT_EQ(stays.runs, 1);
    GameLoop::removeIntervalTask(&stays.task, 1.0);
    tick();
}

TEST_F(GameLoopTest, RunsTheNewestTaskOfAnIntervalFirst)
{
    attach();
    std::string order;
    GameLoop::Task older = [&] {
        order += "older ";
    };
    GameLoop::Task newer = [&] {
        order += "newer ";
    };
    GameLoop::addIntervalTask(&older, 1.0);
    GameLoop::addIntervalTask(&newer, 1.0);
    tickAt(0.0);
    tickAt(1.5);
    EXPECT_EQ(order, "newer older ");
    GameLoop::removeIntervalTask(&older, 1.0);
    GameLoop::removeIntervalTask(&newer, 1.0);
    tick();
}

TEST_F(GameLoopTest, RunsAnIntervalTaskAtTheWholeMultiplesOfItsInterval)
{
    attach();
    Counter counter;
    GameLoop::addIntervalTask(&counter.task, 1.0);
    tickAt(7.9);
    tickAt(7.99);
    EXPECT_EQ(counter.runs, 0);
    tickAt(8.0);
    EXPECT_EQ(counter.runs, 1) << "less than one interval after its registration";
    tickAt(8.5);
    tickAt(8.99);
    EXPECT_EQ(counter.runs, 1);
    tickAt(9.01);
    EXPECT_EQ(counter.runs, 2);
    GameLoop::removeIntervalTask(&counter.task, 1.0);
    tick();
}

TEST_F(GameLoopTest, StartsCountingAnewForAllTasksOfAnInterval)
{
    attach();
    Counter first;
    Counter second;
    GameLoop::addIntervalTask(&first.task, 1.0);
    tickAt(7.9);
    GameLoop::addIntervalTask(&second.task, 1.0);
    tickAt(8.2);
    EXPECT_EQ(first.runs, 0) << "the eighth second belongs to the new registration";
    tickAt(9.0);
    EXPECT_EQ(first.runs, 1);
    EXPECT_EQ(second.runs, 1);
    GameLoop::removeIntervalTask(&first.task, 1.0);
    GameLoop::removeIntervalTask(&second.task, 1.0);
    tick();
}

TEST_F(GameLoopTest, RunsAnIntervalTaskOnceForALongPause)
{
    attach();
    Counter counter;
    GameLoop::addIntervalTask(&counter.task, 1.0);
    tickAt(10.2);
    GameLoop::pause();
    for (double now = 11.2; now < 15.5; now += 1.0)
        tickAt(now);
    EXPECT_EQ(counter.runs, 0);
    GameLoop::resume();
    tickAt(15.3);
    EXPECT_EQ(counter.runs, 1);
    tickAt(15.4);
    EXPECT_EQ(counter.runs, 1);
    GameLoop::removeIntervalTask(&counter.task, 1.0);
    tick();
}

TEST_F(GameLoopTest, KeepsATaskWhoseRemovalIsOffByTheLastBit)
{
    attach();
    Counter counter;
    GameLoop::addIntervalTask(&counter.task, 1.0);
    GameLoop::removeIntervalTask(&counter.task, std::nextafter(1.0, 2.0));
    tickAt(0.0);
    tickAt(1.0);
    EXPECT_EQ(counter.runs, 1);
    GameLoop::removeIntervalTask(&counter.task, 1.0);
    tickAt(2.0);
    EXPECT_EQ(counter.runs, 1);
}

TEST_F(GameLoopTest, LetsTheOwnerOfARemovedTaskGo)
{
    attach();
    auto owner = std::make_unique<Counter>();
    auto other = std::make_unique<Counter>();
    GameLoop::addFrameTask(&owner->task);
    GameLoop::addFrameTask(&other->task);
    GameLoop::addIntervalTask(&owner->task, 1.0);
    tickAt(0.0);
    GameLoop::removeFrameTask(&owner->task);
    GameLoop::removeIntervalTask(&owner->task, 1.0);
    owner->task = nullptr;  // to call it now would throw
    owner.reset();
    tickAt(1.0);
    EXPECT_EQ(other->runs, 2);
    GameLoop::removeFrameTask(&other->task);
    tick();
}

TEST_F(GameLoopTest, TakesRegistrationsWhilePausedAndRunsThemAfterwards)
{
    attach();
    GameLoop::pause();
    Counter counter;
    GameLoop::addFrameTask(&counter.task);
    tick();
    EXPECT_EQ(GameLoop::frameTaskCount(), 1u);
    EXPECT_EQ(counter.runs, 0);
    GameLoop::resume();
    tick();
    EXPECT_EQ(counter.runs, 1);
    GameLoop::removeFrameTask(&counter.task);
    tick();
}

TEST_F(GameLoopTest, OnlyDrawsWhilePaused)
{
    attach();
    tick();
    int frames = 0;
    atFrame([&] { ++frames; });
    application->happened.clear();
    const float path = application->path();
    GameLoop::pause();
    EXPECT_TRUE(GameLoop::isPaused());
    for (int i = 0; i < 3; ++i)
        tick();
    EXPECT_EQ(frames, 3);
    EXPECT_TRUE(application->happened.empty());
    EXPECT_EQ(application->path(), path);
    GameLoop::resume();
    tick();
    EXPECT_EQ(application->happened, (std::vector<std::string>{"update", "transforms"}));
    EXPECT_NEAR(application->path() - path, 0.02f, 1e-5f) << "and makes up for nothing";
}

TEST_F(GameLoopTest, HoldsQueuedCommandsBackWhilePausedAndRunsAllOnResume)
{
    attach();
    tick();
    const float path = application->path();
    GameLoop::pause();
    application->setLinearVelocity(bodyId, osg::Vec3f(5.0f, 3.0f, 0.0f), true);
    tick();
    application->addForce(bodyId, osg::Vec3f(-3.0f, 0.0f, 0.0f),
                          PhysxScene::forceModeVelocityChange, true);
    tick();
    EXPECT_EQ(application->path(), path);
    GameLoop::resume();
    tick();
    EXPECT_NEAR(application->path() - path, 0.02f * 2.0f, 1e-4f);
}

TEST_F(GameLoopTest, SlowsTheWorldWhenTicksAreSlow)
{
    GameLoop::Task dawdler = [] {
        QThread::msleep(35);
    };
    GameLoop::addFrameTask(&dawdler);
    GameLoop::start(application);
    QElapsedTimer clock;
    clock.start();
    ASSERT_TRUE(waitUntil([&] { return application->updates >= 8; }));
    EXPECT_GE(clock.elapsed(), 8 * 35);
    EXPECT_NEAR(application->path(), float(application->updates) * 0.02f, 1e-4f);
    GameLoop::removeFrameTask(&dawdler);
    tick();
}

/// Remembers whose timer has fired last.
class TimerWatch : public QObject
{
public:
    TimerWatch() { QCoreApplication::instance()->installEventFilter(this); }

    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::Timer)
            fired = object;
        return false;
    }

    QObject* fired = nullptr;
};

/// The milliseconds of the timer that ticks the loop, as it was set.
int intervalOfTicks()
{
    TimerWatch watch;
    int interval = -1;
    GameLoop::Task reader = [&] {
        for (const auto& timer :
             QAbstractEventDispatcher::instance()->registeredTimers(watch.fired))
            interval = timer.interval;
    };
    GameLoop::addFrameTask(&reader);
    EXPECT_TRUE(waitUntil([&] { return interval >= 0; }));
    GameLoop::removeFrameTask(&reader);
    GameLoop::instance()->tick();
    return interval;
}

TEST_F(GameLoopTest, TicksAtTheRateOfTheApplication)
{
    application->rate = 3;
    GameLoop::start(application);
    EXPECT_EQ(intervalOfTicks(), 333);
}

TEST_F(GameLoopTest, TicksFiftyTimesASecondAtMost)
{
    GameLoop::start(application);
    EXPECT_EQ(intervalOfTicks(), 20);
    application->updates = 0;
    QElapsedTimer clock;
    clock.start();
    ASSERT_TRUE(waitUntil([&] { return application->updates >= 10; }));
    // It may be early by a twentieth.
    EXPECT_GE(clock.elapsed(), 10 * 19 - 20);
}

TEST_F(GameLoopTest, LocksTheWorldAsOftenAsOneThreadLikes)
{
    std::atomic<bool> entered{false};
    GameLoop::lock();
    GameLoop::lock();
    std::thread other([&] {
        GameLoop::lock();
        entered = true;
        GameLoop::unlock();
    });
    GameLoop::unlock();
    QThread::msleep(20);
    EXPECT_FALSE(entered) << "one unlock of two is none";
    GameLoop::unlock();
    other.join();
    EXPECT_TRUE(entered);
}

/// One that sleeps before a locked world, and does this once it is let in.
std::thread threadWaitingForTheWorld(const std::function<void()>& task)
{
    std::atomic<int> waiting{0};
    std::thread thread([&waiting, task] {
        waiting = gettid();
        const GameLoop::Lock worldLock;
        task();
    });
    while (waiting == 0 || !isAsleep(waiting))
        std::this_thread::yield();
    return thread;
}

TEST(GameLoopDeathTest, LetsTheOwnerOfTheWorldInAgainWhileAnotherThreadWaits)
{
    // In a process of its own, which the alarm ends if the two wait for each other.
    const auto locksAgain = [] {
        alarm(20);
        GameLoop::lock();
        std::thread other = threadWaitingForTheWorld([] {});
        GameLoop::lock();
        GameLoop::unlock();
        GameLoop::unlock();
        other.join();
        std::_Exit(0);
    };
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(locksAgain(), ::testing::ExitedWithCode(0), "");
}

TEST_F(GameLoopTest, LetsAThreadThatWaitsInBeforeTheOneThatComesBack)
{
    for (int i = 0; i < 20; ++i) {
        std::atomic<bool> entered{false};
        GameLoop::lock();
        std::thread other = threadWaitingForTheWorld([&] { entered = true; });
        GameLoop::unlock();
        GameLoop::lock();
        EXPECT_TRUE(entered);
        GameLoop::unlock();
        other.join();
    }
}

TEST_F(GameLoopTest, HoldsTheWorldAsLongAsAGuardLives)
{
    std::atomic<bool> entered{false};
    std::thread other;
    {
        const GameLoop::Lock worldLock;
        {
            const GameLoop::Lock again;
        }
        other = std::thread([&] {
            const GameLoop::Lock itsTurn;
            entered = true;
        });
        QThread::msleep(20);
        EXPECT_FALSE(entered) << "the guard inside gave back its own lock alone";
    }
    other.join();
    EXPECT_TRUE(entered);
}

TEST_F(GameLoopTest, HoldsTheWorldLockThroughTheWholeTick)
{
    attach();
    std::atomic<bool> asked{false};
    std::atomic<bool> entered{false};
    std::thread other;
    GameLoop::Task asker = [&] {
        other = std::thread([&] {
            asked = true;
            const GameLoop::Lock worldLock;
            entered = true;
        });
        while (!asked)
            std::this_thread::yield();
    };
    bool enteredAtFrame = true;
    atFrame([&] {
        QThread::msleep(20);
        enteredAtFrame = entered;
    });
    GameLoop::addFrameTask(&asker);
    tick();
    other.join();
    EXPECT_FALSE(enteredAtFrame);
    EXPECT_TRUE(entered);
    GameLoop::removeFrameTask(&asker);
    scene->setUpdateCallback(nullptr);
    tick();
}

TEST_F(GameLoopTest, TakesRegistrationsFromAnyThread)
{
    constexpr int threadCount = 4;
    constexpr int tasksEach = 250;
    attach();
    std::vector<Counter> counters(threadCount * tasksEach);
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < tasksEach; ++i)
                GameLoop::addFrameTask(&counters[std::size_t(t * tasksEach + i)].task);
        });
    }
    for (int i = 0; i < 20; ++i)
        tick();
    for (std::thread& thread : threads)
        thread.join();
    tick();
    EXPECT_EQ(GameLoop::frameTaskCount(), counters.size());
    for (Counter& counter : counters) {
        ASSERT_GE(counter.runs, 1);
        GameLoop::removeFrameTask(&counter.task);
    }
    tick();
    EXPECT_EQ(GameLoop::frameTaskCount(), 0u);
}

TEST_F(GameLoopTest, ReadsTheClockOfTheViewer)
{
    attach();
    tick();
    const osg::FrameStamp* stamp = GameLoop::frameStamp();
    EXPECT_EQ(stamp, widget->getFrameStamp());
    EXPECT_GT(stamp->getSimulationTime(), 0.0);
    EXPECT_EQ(stamp->getSimulationTime(), stamp->getReferenceTime());
}

TEST_F(GameLoopTest, PassesOnWhatAnEmptyTaskThrows)
{
    attach();
    GameLoop::Task empty;
    GameLoop::addFrameTask(&empty);
    EXPECT_THROW(tick(), std::bad_function_call);
    // Not the world lock, too.
    std::thread([] { const GameLoop::Lock worldLock; }).join();
    GameLoop::removeFrameTask(&empty);
    tick();
    EXPECT_EQ(GameLoop::frameTaskCount(), 0u);
}

TEST_F(GameLoopTest, UpdatesTheSoundOnceATickAlsoWhilePaused)
{
    attach();
    soundUpdates = 0;
    tick();
    EXPECT_EQ(soundUpdates, 1);
    GameLoop::pause();
    for (int i = 0; i < 3; ++i)
        tick();
    EXPECT_EQ(soundUpdates, 4);
}

TEST_F(GameLoopTest, IsOne)
{
    EXPECT_NE(GameLoop::instance(), nullptr);
    EXPECT_EQ(GameLoop::instance(), GameLoop::instance());
}

}  // namespace

FMOD_RESULT __wrap__ZN4FMOD6System6updateEv(FMOD::System* system)
{
    ++soundUpdates;
    return __real__ZN4FMOD6System6updateEv(system);
}

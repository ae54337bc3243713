#pragma once

#include <QMultiMap>
#include <QMutex>
#include <QObject>
#include <QTimer>

#include <atomic>
#include <cstddef>
#include <deque>
#include <functional>
#include <unordered_map>
#include <vector>

namespace osg {
class FrameStamp;
}

class GravlinApplication;

/// The frame and task scheduler of the process, and the keeper of the world lock. Its timer's tick
/// is the whole life of a frame and the only thing that advances the world; a slow tick slows the
/// world, there is no catch-up. A singleton that is made at first use and never destroyed.
class GameLoop : public QObject
{
    Q_OBJECT

public:
    using Task = std::function<void()>;

    static GameLoop* instance();

    /// The world lock: recursive, to be held by every thread while it touches scene, level or HUD.
    /// Threads get it in turn: who waits for it goes before who had it last.
    static void lock();
    static void unlock();

    /// Holds the world lock as long as it lives.
    class Lock
    {
    public:
        Lock() { lock(); }
        ~Lock() { unlock(); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;
    };

    /// Stores the application (not owned); ticks then come from whoever calls tick().
    static void attach(GravlinApplication* application);
    /// Attaches the application and starts the timer at its frame rate.
    static void start(GravlinApplication* application);

    /// A paused loop goes on with sound, registrations and rendering, and with nothing else.
    static void pause();
    static void resume();
    static bool isPaused();

    /// The registrations are queued and take effect at the next tick. Any thread, also from
    /// inside a task. The task is known by its address and stays its owner's, who keeps it alive
    /// until the tick after its removal.
    static void addFrameTask(Task* task);
    static void removeFrameTask(Task* task);
    /// Runs the task at whole multiples of `intervalSeconds` on the simulation clock, at most once
    /// a tick. The removal takes every entry of exactly this task and interval.
    static void addIntervalTask(Task* task, double intervalSeconds);
    static void removeIntervalTask(Task* task, double intervalSeconds);

    /// The clock of the application's view, simulation time in seconds. Valid once an
    /// application is attached.
    static osg::FrameStamp* frameStamp();

    /// What is registered as of the last tick. Main thread.
    static std::size_t frameTaskCount();
    static std::size_t intervalTaskCount();

    /// One frame, in order: sound, registrations, tasks, game, physics, transforms, rendering. Main
    /// thread; holds the world lock throughout. Does nothing without an application.
    void tick();

private:
    GameLoop();

    void queueCommand(const std::function<void()>& command);
    void runCommands();
    void runFrameTasks();
    void runIntervalTasks();
    void advanceWorld();

    QTimer timer;
    GravlinApplication* application = nullptr;
    QMutex worldMutex{QMutex::Recursive};
    /// Held while waiting for the world. Without it a loop whose ticks leave no time between them
    /// has the world back before the sensor's thread has woken up, again and again.
    QMutex turnstile;
    std::atomic<Qt::HANDLE> worldOwner{nullptr};
    int worldDepth = 0;  // locks of the owner; guarded by worldMutex
    QMultiMap<double, Task*> intervalTasks;
    std::unordered_map<double, int> intervalCounts;
    /// In the order of their registration, each once. A hash set would walk them by their
    /// addresses: in each run of the program elevators would be tied to the board in another order,
    /// and the same keys would not lead to the same game.
    std::vector<Task*> frameTasks;
    std::deque<std::function<void()>> commandQueue;
    QMutex commandMutex;
    std::atomic<bool> paused{false};
};

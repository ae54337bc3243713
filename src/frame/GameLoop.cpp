#include "frame/GameLoop.h"

#include "game/GravlinApplication.h"
#include "sound/FmodManager.h"

#include <QMutexLocker>
#include <QThread>
#include <fmod.hpp>
#include <osg/FrameStamp>
#include <osgViewer/ViewerBase>

#include <algorithm>
#include <limits>

namespace {

// A plain pointer and flag: the loop is first reached from the game's constructor, before there is
// a second thread, and it stays until the process ends.
GameLoop* loop = nullptr;
bool created = false;

int wholeIntervals(double now, double interval)
{
    return int(now / interval);
}

}  // namespace

GameLoop::GameLoop()
{
    connect(&timer, &QTimer::timeout, this, &GameLoop::tick);
}

GameLoop* GameLoop::instance()
{
    if (!created) {
        loop = new GameLoop;
        created = true;
    }
    return loop;
}

void GameLoop::lock()
{
    GameLoop* self = instance();
    const Qt::HANDLE thread = QThread::currentThreadId();
    // No other thread can make this one the owner, so that this needs no order.
    if (self->worldOwner.load(std::memory_order_relaxed) == thread) {
        self->worldMutex.lock();
    } else {
        const QMutexLocker turn(&self->turnstile);
        self->worldMutex.lock();
        // The orders here and in unlock() repeat what the mutex does, for the thread sanitizer,
        // which sees no lock inside of Qt.
        self->worldOwner.exchange(thread, std::memory_order_acquire);
    }
    ++self->worldDepth;
}

void GameLoop::unlock()
{
    GameLoop* self = instance();
    if (--self->worldDepth == 0)
        self->worldOwner.store(nullptr, std::memory_order_release);
    self->worldMutex.unlock();
}

void GameLoop::attach(GravlinApplication* application)
{
    instance()->application = application;
}

void GameLoop::start(GravlinApplication* application)
{
    attach(application);
    instance()->timer.start(int(1000.0f / float(application->frameRate())));
}

void GameLoop::pause()
{
    instance()->paused = true;
}

void GameLoop::resume()
{
    instance()->paused = false;
}

bool GameLoop::isPaused()
{
    return instance()->paused;
}

void GameLoop::addFrameTask(Task* task)
{
    GameLoop* self = instance();
    self->queueCommand([self, task] {
        std::vector<Task*>& tasks = self->frameTasks;
        if (std::find(tasks.begin(), tasks.end(), task) == tasks.end())
            tasks.push_back(task);
    });
}

void GameLoop::removeFrameTask(Task* task)
{
    GameLoop* self = instance();
    self->queueCommand([self, task] {
        std::vector<Task*>& tasks = self->frameTasks;
        tasks.erase(std::remove(tasks.begin(), tasks.end(), task), tasks.end());
    });
}

void GameLoop::addIntervalTask(Task* task, double intervalSeconds)
{
    GameLoop* self = instance();
    self->queueCommand([self, task, intervalSeconds] {
        self->intervalTasks.insert(intervalSeconds, task);
        // Counting starts now, so that the first run comes at the next whole multiple.
        self->intervalCounts[intervalSeconds] =
            wholeIntervals(frameStamp()->getSimulationTime(), intervalSeconds);
    });
}

void GameLoop::removeIntervalTask(Task* task, double intervalSeconds)
{
    GameLoop* self = instance();
    self->queueCommand(
        [self, task, intervalSeconds] { self->intervalTasks.remove(intervalSeconds, task); });
}

osg::FrameStamp* GameLoop::frameStamp()
{
    return instance()->application->getFrameStamp();
}

std::size_t GameLoop::frameTaskCount()
{
    return instance()->frameTasks.size();
}

std::size_t GameLoop::intervalTaskCount()
{
    return std::size_t(instance()->intervalTasks.size());
}

void GameLoop::tick()
{
    if (!application)
        return;
    const Lock worldLock;
    FmodManager::system()->update();
    runCommands();
    if (!paused)
        advanceWorld();
    application->getViewerBase()->frame(std::numeric_limits<double>::max());
}

void GameLoop::queueCommand(const std::function<void()>& command)
{
    const QMutexLocker locker(&commandMutex);
    commandQueue.push_back(command);
}

void GameLoop::runCommands()
{
    const QMutexLocker locker(&commandMutex);
    while (!commandQueue.empty()) {
        commandQueue.front()();
        commandQueue.pop_front();
    }
}

void GameLoop::advanceWorld()
{
    runFrameTasks();
    runIntervalTasks();
    application->update();
    application->step(double(application->timeStep()));
    application->syncTransforms();
}

void GameLoop::runFrameTasks()
{
    for (Task* task : frameTasks)
        (*task)();
}

void GameLoop::runIntervalTasks()
{
    const double now = frameStamp()->getSimulationTime();
    for (auto& [interval, count] : intervalCounts) {
        const int ticks = wholeIntervals(now, interval);
        if (ticks <= count)
            continue;
        count = ticks;
        for (auto entry = intervalTasks.constFind(interval);
             entry != intervalTasks.constEnd() && entry.key() == interval; ++entry)
            (*entry.value())();
    }
}

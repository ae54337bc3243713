#pragma once

#include "FrameWriter.h"
#include "game/GameState.h"
#include "support/GameTest.h"
#include "support/SensorService.h"

#include <Leap.h>
#include <osg/MatrixTransform>

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// Stands between the sensor and the game and hands everything on, so that a test knows which
/// frame the game has served, on which thread, and what became of its state.
class FrameWitness : public Leap::Listener
{
public:
    struct Served
    {
        std::int64_t id;
        GameState before;
        GameState after;
        std::thread::id thread;
    };

    explicit FrameWitness(Rollix& listener) : game(listener) {}

    void onConnect(const Leap::Controller& controller) override;
    void onFrame(const Leap::Controller& controller) override;

    /// False if it is not served within a generous limit.
    bool waitsForFrame(std::int64_t id);
    /// The game has begun with the frame, and its thread does not go on.
    bool waitsUntilStuckAt(std::int64_t id);
    bool waitsForFrames(std::size_t count);
    bool waitsForConnections(int count);

    void forgets();
    /// All since forgets(), in order.
    std::vector<Served> served() const;
    int connections() const;
    /// The newest frame that was served; 0 since forgets().
    std::int64_t newestServed() const;
    /// The newest frame that has arrived, served or not.
    std::int64_t newestArrived() const;

private:
    Rollix& game;
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::vector<Served> frames;
    std::int64_t begun = -1;
    int servingThread = 0;
    int connects = 0;
    std::unique_ptr<Leap::Controller> connection;
};

/// The sensor service of the process: up before the game is built, gone before the process ends.
class ServiceFirst
{
protected:
    ServiceFirst();
    SensorService& service;
};

/// The real game with a hand over the sensor: whatever the hand does comes as a message through the
/// service's WebSocket. Between two frames nothing moves but what the test moves.
class HandGameTest : private ServiceFirst, public GameTest
{
public:
    HandGameTest();
    ~HandGameTest() override;

    using ServiceFirst::service;
    FrameWitness& witness;

    /// One frame; returns when the game has served it.
    void sees(const std::vector<PlayedHand>& hands,
              const std::vector<PlayedGesture>& gestures = {});
    /// One frame that has to wait for the world, which goes on without it: `happens` is what a tick
    /// or a key does meanwhile. Returns when the game has served the frame.
    void seesTooLate(const std::vector<PlayedHand>& hands, const std::function<void()>& happens,
                     const std::vector<PlayedGesture>& gestures = {});
    /// A message of the next number, not sent yet.
    PlayedFrame nextFrame(const std::vector<PlayedHand>& hands);
    /// A flat hand over a level board: play begins.
    void startsPlay();

    /// The board's angular velocity in the world, rad/s: now, and once the commands have run that
    /// wait for the next tick. These run without a step, because the solver would at once take a
    /// little off the velocity for the board's weight off its pivot.
    osg::Vec3d boardTurn() const;
    osg::Vec3d commandedTurn();

    osg::MatrixTransform& guide() const;

    /// Whether the line is in the scene.
    bool reads(const std::string& text) const;
    /// The menu's large line; empty when no menu is shown.
    std::string selectedLine() const;
    /// Circles until this line is the large one.
    void selects(const std::string& line);

    /// The frame served last led from one state to the other, on the sensor's thread.
    void expectLastFrame(GameState before, GameState after);
};

PlayedHand flatHand();
PlayedHand rolledHand(float roll);
std::vector<PlayedHand> twoHands();
/// The hand that wants the board's upper side to look along `up` (world, unit length) and its far
/// edge ahead.
PlayedHand handFor(const osg::Vec3d& up);

PlayedGesture tap();
PlayedGesture circle(bool clockwise, double progress = 1.5, const char* state = "stop");

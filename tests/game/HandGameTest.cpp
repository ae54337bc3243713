#include "HandGameTest.h"

#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "hand/HandCamera.h"
#include "hand/LeapManager.h"
#include "hud/MenuHUD.h"
#include "hud/TextHUD.h"
#include "level/Board.h"
#include "level/Level.h"
#include "platform/leap/ServiceAddress.h"
#include "support/GameInside.h"
#include "support/SceneSearch.h"
#include "support/SleepingThread.h"

#include <chrono>
#include <cmath>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr int generousMilliseconds = 20000;
constexpr std::chrono::milliseconds generousLimit(generousMilliseconds);
constexpr int framesPerSecond = 200;  // of the fastest sensors
constexpr std::int64_t microsecondsPerFrame = 5000;
constexpr float cameraAngle = 3.1415927f;
constexpr float cameraHeight = 30.0f;
const char* const menuTitle = "Menu";
constexpr int mostLines = 4;

SensorService* theService = nullptr;

/// Ends the sensor while all that its threads use is still there.
class ServiceLast : public ::testing::Environment
{
public:
    void TearDown() override
    {
        if (!theService)
            return;
        theService->streams(false);
        LeapManager::removeListener();
        delete theService;
        theService = nullptr;
    }
};

[[maybe_unused]] const auto* const serviceLast =
    ::testing::AddGlobalTestEnvironment(new ServiceLast);

SensorService& serviceOfTheProcess()
{
    if (!theService) {
        SensorServer::Behaviour behaviour;
        behaviour.framesPerSecond = framesPerSecond;
        theService = new SensorService(behaviour);
    }
    return *theService;
}

FrameWitness& witnessOf(Rollix& game)
{
    static auto* const witness = new FrameWitness(game);
    return *witness;
}

// Far from the numbers that the service gives to the frames of its own.
std::int64_t& lastFrameId()
{
    static std::int64_t id = 1000000;
    return id;
}

}  // namespace

void FrameWitness::onConnect(const Leap::Controller& controller)
{
    game.onConnect(controller);
    const std::lock_guard<std::mutex> lock(mutex);
    connection = std::make_unique<Leap::Controller>(controller);
    ++connects;
    changed.notify_all();
}

void FrameWitness::onFrame(const Leap::Controller& controller)
{
    const GameState before = game.state;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        begun = controller.frame(0).id();
        servingThread = int(syscall(SYS_gettid));
    }
    game.onFrame(controller);
    const std::lock_guard<std::mutex> lock(mutex);
    begun = -1;
    frames.push_back({controller.frame(0).id(), before, game.state, std::this_thread::get_id()});
    changed.notify_all();
}

bool FrameWitness::waitsForFrame(std::int64_t id)
{
    std::unique_lock<std::mutex> lock(mutex);
    return changed.wait_for(lock, generousLimit,
                            [&] { return !frames.empty() && frames.back().id == id; });
}

bool FrameWitness::waitsUntilStuckAt(std::int64_t id)
{
    return holdsWithin(
        generousMilliseconds,
        [&] {
            const std::lock_guard<std::mutex> lock(mutex);
            return begun == id && isAsleep(servingThread);
        });
}

bool FrameWitness::waitsForFrames(std::size_t count)
{
    std::unique_lock<std::mutex> lock(mutex);
    return changed.wait_for(lock, generousLimit, [&] { return frames.size() >= count; });
}

bool FrameWitness::waitsForConnections(int count)
{
    std::unique_lock<std::mutex> lock(mutex);
    return changed.wait_for(lock, generousLimit, [&] { return connects >= count; });
}

void FrameWitness::forgets()
{
    const std::lock_guard<std::mutex> lock(mutex);
    frames.clear();
}

std::vector<FrameWitness::Served> FrameWitness::served() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return frames;
}

int FrameWitness::connections() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return connects;
}

std::int64_t FrameWitness::newestServed() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return frames.empty() ? 0 : frames.back().id;
}

std::int64_t FrameWitness::newestArrived() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return connection ? connection->frame(0).id() : -1;
}

ServiceFirst::ServiceFirst() : service(serviceOfTheProcess()) {}

HandGameTest::HandGameTest() : witness(witnessOf(game))
{
    service.streams(false);
    service.shows({});
    Leap::setServiceAddress(SensorService::urlOfPort(service.port()));
    const int connections = witness.connections();
    LeapManager::setListener(&witness);
    EXPECT_TRUE(service.hasClient());
    EXPECT_TRUE(witness.waitsForConnections(connections + 1));
    game.handCamera->setAngle(cameraAngle);
    game.handCamera->setHeight(cameraHeight);
    loads({"#######", "#.....#", "#.....#", "#..S..#", "#.....#", "#.....#", "#######"});
    ticks();
    witness.forgets();
}

HandGameTest::~HandGameTest()
{
    service.streams(false);
    LeapManager::removeListener();
    // What is still on its way may not open a menu in the next test.
    game.state = GameState::WaitingForRest;
}

PlayedFrame HandGameTest::nextFrame(const std::vector<PlayedHand>& hands)
{
    PlayedFrame frame;
    frame.id = ++lastFrameId();
    frame.timestamp = frame.id * microsecondsPerFrame;
    frame.frameRate = framesPerSecond;
    frame.hands = hands;
    return frame;
}

void HandGameTest::sees(const std::vector<PlayedHand>& hands,
                        const std::vector<PlayedGesture>& gestures)
{
    PlayedFrame frame = nextFrame(hands);
    frame.gestures = gestures;
    service.sendsText(frameMessage(frame));
    EXPECT_TRUE(witness.waitsForFrame(frame.id));
}

void HandGameTest::seesTooLate(const std::vector<PlayedHand>& hands,
                               const std::function<void()>& happens,
                               const std::vector<PlayedGesture>& gestures)
{
    PlayedFrame frame = nextFrame(hands);
    frame.gestures = gestures;
    {
        const GameLoop::Lock worldLock;
        service.sendsText(frameMessage(frame));
        EXPECT_TRUE(witness.waitsUntilStuckAt(frame.id));
        happens();
    }
    EXPECT_TRUE(witness.waitsForFrame(frame.id));
}

void HandGameTest::startsPlay()
{
    sees({flatHand()});
    EXPECT_EQ(game.state, GameState::Playing);
}

osg::Vec3d HandGameTest::commandedTurn()
{
    auto& tasks = GameInside::tasksOf(game);
    for (const auto& task : tasks)
        task();
    tasks.clear();
    return boardTurn();
}

osg::Vec3d HandGameTest::boardTurn() const
{
    const physx::PxVec3 turn = GameInside::bodyOf(game, board().getId()).getAngularVelocity();
    return {turn.x, turn.y, turn.z};
}

osg::MatrixTransform& HandGameTest::guide() const
{
    return *GameInside::transformsOf(game).at(board().guideId);
}

bool HandGameTest::reads(const std::string& text) const
{
    return textReading(text, game.getSceneData()) != nullptr;
}

std::string HandGameTest::selectedLine() const
{
    for (const std::string& line : largestTextsBelow(game.getSceneData()))
        if (line != menuTitle)
            return line;
    return std::string();
}

void HandGameTest::selects(const std::string& line)
{
    for (int i = 0; i < mostLines && selectedLine() != line; ++i)
        sees({flatHand()}, {circle(true)});
    EXPECT_EQ(selectedLine(), line);
}

void HandGameTest::expectLastFrame(GameState before, GameState after)
{
    const std::vector<FrameWitness::Served> served = witness.served();
    ASSERT_FALSE(served.empty());
    EXPECT_EQ(served.back().before, before);
    EXPECT_EQ(served.back().after, after);
    EXPECT_NE(served.back().thread, std::this_thread::get_id());
}

PlayedHand flatHand()
{
    return PlayedHand();
}

PlayedHand rolledHand(float roll)
{
    PlayedHand hand;
    hand.roll = roll;
    return hand;
}

std::vector<PlayedHand> twoHands()
{
    PlayedHand left;
    left.id = 2;
    left.isLeft = true;
    left.palm = {-120.0f, 200.0f, 0.0f};
    PlayedHand right;
    right.palm = {120.0f, 200.0f, 0.0f};
    return {right, left};
}

PlayedHand handFor(const osg::Vec3d& up)
{
    PlayedHand hand;
    hand.roll = float(-std::asin(up.x()));
    hand.pitch = float(-std::asin(up.y() / std::cos(double(hand.roll))));
    return hand;
}

PlayedGesture tap()
{
    return PlayedGesture();
}

PlayedGesture circle(bool clockwise, double progress, const char* state)
{
    PlayedGesture gesture;
    gesture.type = PlayedGesture::Type::Circle;
    gesture.id = int(++lastFrameId());
    gesture.state = state;
    gesture.normal = QVector3D(0.0f, 0.0f, clockwise ? -1.0f : 1.0f);
    gesture.progress = progress;
    gesture.radius = 30.0;
    return gesture;
}

#include "BareWorld.h"
#include "BenchLevel.h"
#include "Rocking.h"
#include "frame/GameLoop.h"
#include "frame/OsgViewerWidget.h"
#include "game/Rollix.h"
#include "level/Board.h"
#include "level/Level.h"
#include "support/SharedWorld.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <limits>
#include <memory>
#include <vector>

namespace {

constexpr int settlingTicks = 100;

/// Ticks the game without drawing. The viewer skips its frame while it is "done", and with it the
/// traversals, which are not drawing: those are made up for.
class UndrawnGame
{
public:
    explicit UndrawnGame(int level)
    {
        load(benchLevel(level));
        widget.setDone(true);
        board = game.level->board->getId();
    }

    ~UndrawnGame() { widget.setDone(false); }

    void tick()
    {
        game.addTorque(board, rockingTorque(ticks++), physx::PxForceMode::eVELOCITY_CHANGE, true);
        GameLoop::instance()->tick();
        widget.setDone(false);
        widget.advance(std::numeric_limits<double>::max());
        widget.eventTraversal();
        widget.updateTraversal();
        widget.setDone(true);
    }

private:
    Rollix& game = *sharedWorld().game;
    OsgViewerWidget& widget = *sharedWorld().widget;
    unsigned int board = 0;
    int ticks = 0;
};

/// The same world and the same rocking without the game.
class BareBoard
{
public:
    explicit BareBoard(int level)
    {
        load(benchLevel(level));
        Rollix& game = *sharedWorld().game;
        // The queued poses are only taken at the first step.
        game.step(double(game.timeStep()));
        world = std::make_unique<BareWorld>(gameScene());
        seconds = game.timeStep();
        physx::PxScene& original = gameScene();
        std::vector<physx::PxActor*> bodies(
            original.getNbActors(physx::PxActorTypeFlag::eRIGID_DYNAMIC));
        original.getActors(physx::PxActorTypeFlag::eRIGID_DYNAMIC, bodies.data(),
                           physx::PxU32(bodies.size()));
        for (physx::PxActor* body : bodies)
            if (game.isActor(game.level->board->getId(), body))
                board = world->copyOf(body->is<physx::PxRigidActor>())->is<physx::PxRigidDynamic>();
    }

    void tick()
    {
        const osg::Vec3f turn = rockingTorque(ticks++);
        board->addTorque(physx::PxVec3(turn.x(), turn.y(), turn.z()),
                         physx::PxForceMode::eVELOCITY_CHANGE);
        world->step(seconds);
    }

private:
    std::unique_ptr<BareWorld> world;
    physx::PxRigidDynamic* board = nullptr;
    float seconds = 0.0f;
    int ticks = 0;
};

/// A tick waits for PhysX's thread, and when the machine has something else to do a few wait for
/// so long that a mean would tell of nothing but them: so "median_ms" is told, too.
template <typename Subject>
void tick(benchmark::State& state)
{
    Subject subject(int(state.range(0)));
    for (int i = 0; i < settlingTicks; ++i)
        subject.tick();
    std::vector<double> taken;
    for (auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        subject.tick();
        const std::chrono::duration<double, std::milli> milliseconds =
            std::chrono::steady_clock::now() - begin;
        taken.push_back(milliseconds.count());
    }
    const auto middle = taken.begin() + std::ptrdiff_t(taken.size() / 2);
    std::nth_element(taken.begin(), middle, taken.end());
    state.counters["median_ms"] = *middle;
}

}  // namespace

BENCHMARK(tick<UndrawnGame>)
    ->Name("tick/game")
    ->Arg(trueLevel)
    ->Arg(20)
    ->Unit(benchmark::kMicrosecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(tick<BareBoard>)
    ->Name("tick/bare")
    ->Arg(trueLevel)
    ->Arg(20)
    ->Unit(benchmark::kMicrosecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

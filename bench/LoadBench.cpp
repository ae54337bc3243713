#include "BareWorld.h"
#include "BenchLevel.h"
#include "game/Rollix.h"
#include "level/Level.h"
#include "support/SharedWorld.h"

#include <benchmark/benchmark.h>

namespace {

/// Reloads a level, as the key R does: the old one goes, the new one is made.
void loadGame(benchmark::State& state)
{
    load(benchLevel(int(state.range(0))));
    Rollix& game = *sharedWorld().game;
    for (auto _ : state)
        game.loadLevel(game.level->number);
    load(benchLevel(trueLevel));
}

/// Makes and drops the same bodies and joints in PhysX alone; hulls are taken as they are.
void loadBare(benchmark::State& state)
{
    load(benchLevel(int(state.range(0))));
    for (auto _ : state)
        BareWorld world(gameScene());
    load(benchLevel(trueLevel));
}

void sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
    for (const int size : {20, 60, 100})
        benchmark->Arg(size);
}

}  // namespace

BENCHMARK(loadGame)->Name("load/game")->Apply(sizes);
BENCHMARK(loadBare)->Name("load/bare")->Apply(sizes);

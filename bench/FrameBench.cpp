#include "BenchLevel.h"
#include "Rocking.h"
#include "frame/GameLoop.h"
#include "frame/OsgViewerWidget.h"
#include "game/Rollix.h"
#include "hud/MenuHUD.h"
#include "hud/TextHUD.h"
#include "level/Ball.h"
#include "level/Board.h"
#include "level/Level.h"
#include "support/SharedWorld.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>
#include <osg/MatrixTransform>
#include <osg/Program>
#include <osg/Uniform>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <vector>

namespace {

constexpr double frameSeconds = 0.02;
constexpr int warmUpFrames = 75;  // a spark lives for a second: from then on there are as many
// Given, because finding out would cost the warming up of several tries.
constexpr int measuredFrames = 100;
constexpr int distributionTicks = 400;
constexpr double millisecondsPerSecond = 1000.0;

OsgViewerWidget& widget()
{
    return *sharedWorld().widget;
}

Rollix& game()
{
    return *sharedWorld().game;
}

/// The next frame of a world that stands still but for its clock, which goes on by a fixed step,
/// so that animations and sparks do not depend on how long the frames before have taken.
void drawFrame()
{
    widget().frame(game().getFrameStamp()->getSimulationTime() + frameSeconds);
}

void loadAndWarmUp(const QImage& picture)
{
    load(picture);
    game().messageText->hide();
    // Takes over the poses that are still queued.
    game().step(double(game().timeStep()));
    game().syncTransforms();
    for (int i = 0; i < warmUpFrames; ++i)
        drawFrame();
    QCoreApplication::processEvents();
}

void frames(benchmark::State& state)
{
    for (int i = 0; i < warmUpFrames; ++i)
        drawFrame();
    for (auto _ : state)
        drawFrame();
}

void gameFrame(benchmark::State& state)
{
    loadAndWarmUp(benchLevel(int(state.range(0))));
    frames(state);
}

/// The same scene with every shader of the game put aside for one that does as little as possible.
void bareFrame(benchmark::State& state)
{
    static const char* const vertexText = "#version 120\n"
                                          "void main()\n"
                                          "{\n"
                                          "    gl_Position = gl_ModelViewProjectionMatrix * "
                                          "gl_Vertex;\n"
                                          "}\n";
    static const char* const fragmentText = "#version 120\n"
                                            "void main()\n"
                                            "{\n"
                                            "    gl_FragColor = vec4(0.7, 0.5, 0.3, 1.0);\n"
                                            "}\n";
    osg::ref_ptr<osg::Program> trivial = new osg::Program;
    trivial->addShader(new osg::Shader(osg::Shader::VERTEX, vertexText));
    trivial->addShader(new osg::Shader(osg::Shader::FRAGMENT, fragmentText));
    loadAndWarmUp(benchLevel(int(state.range(0))));
    osg::StateSet* const rootState = game().getSceneData()->getOrCreateStateSet();
    rootState->setAttributeAndModes(trivial,
                                    osg::StateAttribute::ON | osg::StateAttribute::OVERRIDE);
    frames(state);
    rootState->removeAttribute(trivial);
}

/// Shows the ball halfway through a portal, the costliest that it can be.
void splitBall()
{
    const osg::Matrixf place(game().level->ball->getTransform()->getMatrix());
    osg::StateSet* const ballState = game().level->ball->getTransform()->getOrCreateStateSet();
    ballState->getUniform("a_PortalActive")->set(true);
    const auto addMatrix = [&](const char* name, const osg::Matrixf& matrix) {
        osg::ref_ptr<osg::Uniform> uniform = new osg::Uniform(osg::Uniform::FLOAT_MAT4, name);
        uniform->set(matrix);
        ballState->addUniform(uniform);
    };
    addMatrix("a_PortalSenderMatrix", osg::Matrixf::translate(-0.5f, 0.0f, 0.0f) * place);
    addMatrix("a_PortalReceiverMatrix", osg::Matrixf::translate(2.0f, 0.0f, 0.0f) * place);
    addMatrix("a_PortalRotationMatrix", osg::Matrixf::identity());
}

void effectsFrame(benchmark::State& state, bool effects)
{
    loadAndWarmUp(effectsLevel(effects));
    if (effects)
        splitBall();
    frames(state);
}

void hudFrame(benchmark::State& state, bool all)
{
    loadAndWarmUp(benchLevel(trueLevel));
    if (all) {
        game().messageText->setText("Not even close...");
        game().messageText->show();
        game().pauseMenu->show();
    }
    frames(state);
    if (all) {
        game().messageText->hide();
        game().pauseMenu->hide();
    }
}

double processorSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1.0e-9;
}

double percentile99(std::vector<double> seconds)
{
    const auto at = seconds.begin() + std::ptrdiff_t(seconds.size() * 99 / 100);
    std::nth_element(seconds.begin(), at, seconds.end());
    return *at * millisecondsPerSecond;
}

/// Whole ticks of the game, one by one, for the slowest in a hundred. On a machine that is shared,
/// wall time is also the neighbours'; `p99_processor_ms` is the processor time of all threads.
void drawnTick(benchmark::State& state, bool rocked)
{
    loadAndWarmUp(benchLevel(int(state.range(0))));
    const unsigned int board = game().level->board->getId();
    int ticks = 0;
    std::vector<double> wall;
    std::vector<double> processor;
    for (auto _ : state) {
        if (rocked)
            game().addTorque(board, rockingTorque(ticks++), physx::PxForceMode::eVELOCITY_CHANGE,
                             true);
        const auto begin = std::chrono::steady_clock::now();
        const double processorBegin = processorSeconds();
        GameLoop::instance()->tick();
        processor.push_back(processorSeconds() - processorBegin);
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
        wall.push_back(taken.count());
    }
    state.counters["p99_ms"] = percentile99(wall);
    state.counters["p99_processor_ms"] = percentile99(processor);
}

void settings(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
    benchmark->Iterations(measuredFrames);
}

}  // namespace

BENCHMARK(gameFrame)->Name("frame/game")->Arg(trueLevel)->Arg(fullestLevel)->Apply(settings);
BENCHMARK(bareFrame)->Name("frame/bare")->Arg(trueLevel)->Arg(fullestLevel)->Apply(settings);
BENCHMARK_CAPTURE(drawnTick, still, false)
    ->Name("tick/drawn")
    ->Arg(trueLevel)
    ->Arg(fullestLevel)
    ->Apply(settings)
    ->Iterations(distributionTicks);
BENCHMARK_CAPTURE(drawnTick, rocked, true)
    ->Name("tick/rocked")
    ->Arg(trueLevel)
    ->Arg(fullestLevel)
    ->Apply(settings)
    ->Iterations(distributionTicks);
BENCHMARK_CAPTURE(effectsFrame, with, true)->Name("effects/with")->Apply(settings);
BENCHMARK_CAPTURE(effectsFrame, without, false)->Name("effects/without")->Apply(settings);
BENCHMARK_CAPTURE(hudFrame, all, true)->Name("hud/all")->Apply(settings);
BENCHMARK_CAPTURE(hudFrame, playing, false)->Name("hud/playing")->Apply(settings);

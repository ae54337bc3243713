#include "BenchLevel.h"
#include "GameFolder.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>

extern char** environ;

namespace {

constexpr double bytesPerKilobyte = 1024.0;
constexpr double megabyte = 1.0e6;  // bytes
constexpr double microsecondsPerSecond = 1.0e6;

double secondsOf(const timeval& time)
{
    return double(time.tv_sec) + double(time.tv_usec) / microsecondsPerSecond;
}

/// Starts the program in the working directory and waits for its end; false if it failed.
bool run(std::string program, std::string argument, rusage& usage)
{
    char* arguments[] = {program.data(), argument.empty() ? nullptr : argument.data(), nullptr};
    pid_t child = 0;
    int status = 0;
    return posix_spawn(&child, program.c_str(), nullptr, nullptr, arguments, environ) == 0 &&
           wait4(child, &status, 0, &usage) == child && WIFEXITED(status) &&
           WEXITSTATUS(status) == 0;
}

/// From the start of the process to its first picture, in wall time; its own processor time (user
/// and system) and the most memory that it held stand beside it.
void start(benchmark::State& state, const std::string& argument)
{
    const GameFolder folder{QDir(ROLLIX_SOURCE_DIR)};
    folder.enter();
    benchLevel(int(state.range(0))).save(folder.levelPath(0));
    double processor = 0.0;
    double memory = 0.0;
    for (auto _ : state) {
        rusage usage{};
        const auto begin = std::chrono::steady_clock::now();
        if (!run(FIRST_FRAME, argument, usage)) {
            state.SkipWithError("the program has failed");
            break;
        }
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
        state.SetIterationTime(taken.count());
        processor += secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
        memory = double(usage.ru_maxrss) * bytesPerKilobyte / megabyte;
    }
    state.counters["processor_ms"] =
        benchmark::Counter(processor * 1000.0, benchmark::Counter::kAvgIterations);
    state.counters["memory_MB"] = memory;
}

}  // namespace

BENCHMARK_CAPTURE(start, game, "")
    ->Name("start/game")
    ->Arg(trueLevel)
    ->Arg(20)
    ->Arg(60)
    ->Arg(100)
    ->Arg(300)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();
BENCHMARK_CAPTURE(start, bare, "--bare")
    ->Name("start/bare")
    ->Arg(trueLevel)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();

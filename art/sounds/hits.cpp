// Makes the eight sounds of the wooden ball on the wooden board: wood-ball-hit-1.mp3 to -8.mp3, in
// the folder that is the only argument.
//
// The board is a thin plate that rests on its edges. A hit is a short push at a place; every
// bending mode of the plate answers by as much as it bends there and as the push is quick enough
// for it, and dies away. A faster ball stays on the wood for a shorter time, so that it sounds
// brighter. The ball itself answers too, high and very short.

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr int rate = 44100;           // frames a second
constexpr double lead = 0.002;        // s of silence: room for what the coder smears forward
constexpr double fade = 0.06;         // s at the end, down to nothing
constexpr double peak = 0.8;          // of full scale; the coder overshoots by less than the rest
constexpr double highestMode = 9000;  // Hz; above that a push of wood on wood excites nothing

// The long side lies along the grain. The wood is stiffer that way, yet the length wins: a wave
// takes longer from end to end than from side to side.
constexpr double alongGrain = 62;       // Hz, times the square of the number of bellies
constexpr double acrossGrain = 91;      // Hz, ditto
constexpr double internalLoss = 0.021;  // of the energy, a radian: wood
constexpr double edgeLoss = 13;         // 1/s, what the frame takes from every mode

// Where the sound is taken from the plate, in parts of its sides: off every line of symmetry.
constexpr double earX = 0.37;
constexpr double earY = 0.29;

struct Hit
{
    double x, y;       // place, in parts of the plate's sides
    double contact;    // s that the ball pushes; shorter is faster
    double ballTone;   // Hz of the ball's own ring
    double ballLevel;  // beside the plate's modes
    double seconds;
};

constexpr Hit hits[] = {
    {0.50, 0.50, 0.00110, 3100, 0.10, 0.48}, {0.31, 0.44, 0.00085, 3350, 0.13, 0.45},
    {0.72, 0.27, 0.00070, 2900, 0.16, 0.42}, {0.15, 0.62, 0.00060, 3600, 0.18, 0.38},
    {0.58, 0.83, 0.00095, 3200, 0.12, 0.44}, {0.86, 0.71, 0.00050, 3850, 0.22, 0.34},
    {0.23, 0.18, 0.00077, 2750, 0.15, 0.40}, {0.43, 0.09, 0.00042, 4100, 0.26, 0.32},
};

/// How strongly a push of half a squared sine, `contact` long, drives a mode: 1 for slow ones.
double drive(double frequency, double contact)
{
    const double cycles = frequency * contact;
    if (std::fabs(cycles - 1) < 1e-6)
        return 0.5;
    if (cycles < 1e-9)
        return 1;
    return std::fabs(std::sin(pi * cycles) / (pi * cycles * (1 - cycles * cycles)));
}

void addMode(std::vector<double>& samples, double frequency, double level, double decay)
{
    const std::size_t first = std::size_t(lead * rate);
    for (std::size_t i = first; i < samples.size(); ++i) {
        const double time = double(i - first) / rate;
        samples[i] += level * std::exp(-decay * time) * std::sin(2 * pi * frequency * time);
    }
}

void addPlate(std::vector<double>& samples, const Hit& hit)
{
    for (int m = 1; alongGrain * m * m < highestMode; ++m)
        for (int n = 1; alongGrain * m * m + acrossGrain * n * n < highestMode; ++n) {
            const double frequency = alongGrain * m * m + acrossGrain * n * n;
            const double struck = std::sin(pi * m * hit.x) * std::sin(pi * n * hit.y);
            const double heard = std::sin(pi * m * earX) * std::sin(pi * n * earY);
            // A plate radiates its slowest modes badly: the air flows round the edge.
            const double radiated = frequency / (frequency + 220);
            addMode(samples, frequency, struck * heard * radiated * drive(frequency, hit.contact),
                    pi * frequency * internalLoss + edgeLoss);
        }
}

void addBall(std::vector<double>& samples, const Hit& hit)
{
    // The two lowest modes of a ball; wood is no glass, they are gone in some milliseconds.
    addMode(samples, hit.ballTone, hit.ballLevel, 420);
    addMode(samples, hit.ballTone * 1.53, hit.ballLevel * 0.5, 700);
}

void soften(std::vector<double>& samples, const Hit& hit)
{
    const std::size_t first = std::size_t(lead * rate);
    const double rise = hit.contact * rate;  // frames in which the push comes on
    const double fall = fade * rate;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double in = i < first ? 0 : std::min(1.0, (i - first) / rise);
        const double out = std::min(1.0, (samples.size() - 1 - i) / fall);
        samples[i] *= (0.5 - 0.5 * std::cos(pi * in)) * (0.5 - 0.5 * std::cos(pi * out));
    }
}

std::vector<double> render(const Hit& hit)
{
    std::vector<double> samples(std::size_t(hit.seconds * rate));
    addPlate(samples, hit);
    addBall(samples, hit);
    soften(samples, hit);
    double highest = 0;
    for (double sample : samples)
        highest = std::max(highest, std::fabs(sample));
    for (double& sample : samples)
        sample *= peak / highest;
    return samples;
}

bool write(const std::string& path, const std::vector<double>& samples)
{
    SF_INFO info = {};
    info.samplerate = rate;
    info.channels = 1;
    info.format = SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    if (!file) {
        std::printf("%s: %s\n", path.c_str(), sf_strerror(nullptr));
        return false;
    }
    double compression = 0.05;  // of 1: the files are some kilobytes each anyway
    sf_command(file, SFC_SET_COMPRESSION_LEVEL, &compression, sizeof(compression));
    const sf_count_t count = static_cast<sf_count_t>(samples.size());
    const bool written = sf_writef_double(file, samples.data(), count) == count;
    return sf_close(file) == 0 && written;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::printf("usage: hits FOLDER\n");
        return 1;
    }
    int number = 0;
    for (const Hit& hit : hits) {
        const std::string name = "wood-ball-hit-" + std::to_string(++number) + ".mp3";
        if (!write(std::string(argv[1]) + "/" + name, render(hit)))
            return 1;
    }
    return 0;
}

#include "frame/OsgViewerWidget.h"
#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/Level.h"
#include "soak/Soak.h"
#include "support/GameInside.h"
#include "support/GameTest.h"
#include "support/ManualClock.h"
#include "support/OutputCapture.h"

#include <QColor>
#include <QCoreApplication>

#include <algorithm>
#include <iostream>
#include <random>
#include <sstream>
#include <string>

namespace {

constexpr int shortForm = 400;  // worlds
constexpr int ticksPerWorld = 100;
constexpr int tickMilliseconds = 20;
constexpr double longestTick = 0.1;  // s of processor time
constexpr int worldsPerDrawnOne = 50;
constexpr int ticksPerFrame = 10;  // to hand a window over costs more than the rest of a tick
constexpr int mostComplaints = 10;

using Random = std::mt19937;

int between(Random& random, int lowest, int highest)
{
    return std::uniform_int_distribution<int>(lowest, highest)(random);
}

/// A small level in which anything may stand anywhere, linked with anything, as high as it likes.
QImage anyLevel(Random& random)
{
    constexpr int hues[] = {90, 90, 90, 135, 270, 225, 180, 0, 45, 315};
    QImage image(between(random, 1, 10), between(random, 1, 10), QImage::Format_ARGB32);
    const int holes = between(random, 0, 40);  // percent
    for (int row = 0; row < image.height(); ++row) {
        for (int column = 0; column < image.width(); ++column) {
            const int hue =
                (hues[random() % std::size(hues)] + between(random, -11, 11) + 360) % 360;
            // Most at the values that mean something, so that balls roll and do not only fall.
            const int value = between(random, 0, 3) ? 187 : between(random, 0, 255);
            const QColor color =
                QColor::fromHsv(hue, between(random, 0, 255), value, 255 - between(random, 0, 2));
            image.setPixelColor(column, row,
                                between(random, 0, 99) < holes ? QColor(0, 0, 0) : color);
        }
    }
    image.setPixelColor(between(random, 0, image.width() - 1),
                        between(random, 0, image.height() - 1), QColor(0, 186, 47));
    return image;
}

class WorldsSoak : public GameTest
{
protected:
    /// One tick of fingers that know nothing of the game.
    void fumbles(Random& random)
    {
        constexpr Qt::Key arrows[] = {Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_Right};
        constexpr Qt::Key others[] = {Qt::Key_Escape, Qt::Key_Return, Qt::Key_R, Qt::Key_Plus,
                                      Qt::Key_Minus};
        const Qt::Key arrow = arrows[random() % std::size(arrows)];
        if (between(random, 0, 9) == 0)
            presses(arrow);
        if (between(random, 0, 9) == 0)
            releases(arrow);
        if (between(random, 0, 199) == 0) {
            const Qt::Key key = others[random() % std::size(others)];
            presses(key);
            releases(key);
        }
    }

    /// Processor time of the tick, s.
    double timedTick()
    {
        const double begin = processorSeconds();
        ticks();
        const double taken = processorSeconds() - begin;
        clock.advance(tickMilliseconds);
        QCoreApplication::processEvents();
        return taken;
    }

    bool allPosesAreFinite()
    {
        for (const auto& [id, transform] : GameInside::transformsOf(game))
            if (!transform->getMatrix().valid())
                return false;
        return true;
    }

    ManualClock clock;
};

TEST_F(WorldsSoak, OfAllKindsUnderRandomKeysKeepTheirPosesFiniteAndTheirTicksShort)
{
    const int count = soakCount(shortForm);
    const int first = qEnvironmentVariableIntValue("ROLLIX_SOAK_FIRST");
    double slowest = 0.0;
    int complaints = 0;
    double memoryEarly = 0.0;
    {
        OutputCapture output;  // as many levels are announced
        Progress progress("worlds", count);
        for (int i = 0; i < count && complaints < mostComplaints; ++i) {
            Random random{unsigned(first + i)};
            anyLevel(random).save("data/Rollix/level0.png");
            draws(i % worldsPerDrawnOne == 0);
            game.loadLevel(0);
            widget.setDone(false);
            timedTick();  // the first one after loading may link shaders
            double slowestHere = 0.0;
            bool finite = true;
            for (int tick = 1; tick < ticksPerWorld && finite; ++tick) {
                fumbles(random);
                const bool shown = tick % ticksPerFrame == 0;
                widget.setDone(!shown);
                const double taken = timedTick();
                if (!shown)
                    slowestHere = std::max(slowestHere, taken);
                finite = allPosesAreFinite();
            }
            if (!finite || slowestHere > longestTick) {
                ADD_FAILURE() << "world " << first + i << ": slowest tick " << slowestHere << " s"
                              << (finite ? "" : ", a pose is not finite");
                ++complaints;
            }
            slowest = std::max(slowest, slowestHere);
            if (i == count / 10)
                memoryEarly = residentMegabytes();
            std::ostringstream note;
            note << "slowest tick " << int(slowest * 1e4) / 10.0 << " ms";
            progress.at(i + 1, note.str());
        }
    }
    std::cout << count << " worlds of " << ticksPerWorld << " ticks, slowest tick "
              << slowest * 1000.0 << " ms of processor time, memory " << memoryEarly
              << " MB after a tenth, " << residentMegabytes() << " MB at the end" << std::endl;
}

}  // namespace

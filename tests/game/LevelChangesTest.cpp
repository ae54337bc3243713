#include "frame/OsgViewerWidget.h"
#include "game/Rollix.h"
#include "level/Level.h"
#include "support/Census.h"
#include "support/GameTest.h"
#include "support/ManualClock.h"
#include "support/OutputCapture.h"

#include <fstream>
#include <malloc.h>
#include <string>
#include <unistd.h>

namespace {

double residentMegabytes()
{
    // What is free in the heap's own lists is no leak.
    malloc_trim(0);
    std::ifstream statm("/proc/self/statm");
    double size = 0.0;
    double resident = 0.0;
    statm >> size >> resident;
    return resident * double(sysconf(_SC_PAGESIZE)) / 1024.0 / 1024.0;
}

class LevelChangesTest : public GameTest
{
protected:
    /// Floor, ramps and one block of every kind and option that a hue can name.
    static LevelPicture everything()
    {
        LevelPicture picture(12, 12, cells::floor);
        int place = 0;
        const auto add = [&](int hue, int saturation, int value = 73) {
            picture.set(1 + place % 10, 1 + place / 10, {hue, saturation, value});
            ++place;
        };
        add(135, 100);
        for (const int hue : {135, 270, 225, 180, 0, 45, 315})
            for (const int saturation : {50, 60, 70, 80, 90})
                add(hue, saturation);
        add(135, 70, 78);
        add(90, 100, 60);
        return picture;
    }

    /// A level change as it is played: the new level moves and is drawn.
    void changes(unsigned int number)
    {
        game.loadLevel(number);
        // Into the small window: what OpenGL holds does not depend on the size.
        game.getCamera()->setCullMask(~0u);
        plays(40);
    }

    // Particles fly and ghosts come by the clock, and what nobody uses any more is deleted as long
    // as a frame has time left: by the true clock it is chance what has been drawn or deleted so
    // far.
    ManualClock clock;
};

TEST_F(LevelChangesTest, LeaveNothingBehind)
{
    OutputCapture output;  // two hundred levels are announced
    writes(everything(), 1);
    writes(LevelPicture({"SRO", "#TG"}), 0);
    for (int i = 0; i < 10; ++i)
        changes(unsigned(i % 2));
    changes(1);
    const Census before = Census::of(game, widget);
    double memoryAfterFifty = 0.0;
    for (int i = 11; i <= 200; ++i) {
        changes(unsigned(i % 2));
        if (i == 50)
            memoryAfterFifty = residentMegabytes();
    }
    const double memoryAfterAll = residentMegabytes();
    changes(1);
    EXPECT_EQ(Census::of(game, widget), before);
    RecordProperty("residentMegabytesAfter50", std::to_string(memoryAfterFifty));
    RecordProperty("residentMegabytesAfter200", std::to_string(memoryAfterAll));
    // A level of this size is some two megabytes: one that stayed would show ten times over.
    EXPECT_LT(memoryAfterAll - memoryAfterFifty, 12.0);
}

}  // namespace

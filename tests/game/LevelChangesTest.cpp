#include "frame/GameLoop.h"
#include "frame/OsgViewerWidget.h"
#include "game/Rollix.h"
#include "level/BlockCheckpoint.h"
#include "level/Level.h"
#include "support/GameInside.h"
#include "support/GameTest.h"
#include "support/ManualClock.h"
#include "support/OutputCapture.h"

#include <QAbstractEventDispatcher>
#include <QDir>
#include <QFile>
#include <QOpenGLContext>
#include <QOpenGLFunctions>

#include <fstream>
#include <malloc.h>
#include <ostream>
#include <string>
#include <unistd.h>

namespace {

/// What a level has made, counted from outside.
struct Census
{
    std::size_t actors = 0;
    std::size_t joints = 0;
    std::size_t materials = 0;
    std::size_t transforms = 0;
    std::size_t physicsObjects = 0;  // as PhysX knows them
    std::size_t checkpoints = 0;
    std::size_t frameTasks = 0;
    std::size_t intervalTasks = 0;
    std::size_t eventHandlers = 0;
    std::size_t runningTimers = 0;
    std::size_t watchedFiles = 0;
    std::size_t glObjects = 0;

    bool operator==(const Census& other) const { return text() == other.text(); }

    std::string text() const
    {
        std::string result;
        const auto add = [&](const char* name, std::size_t count) {
            result += std::string(name) + ' ' + std::to_string(count) + ", ";
        };
        add("actors", actors);
        add("joints", joints);
        add("materials", materials);
        add("transforms", transforms);
        add("PhysX objects", physicsObjects);
        add("checkpoints", checkpoints);
        add("frame tasks", frameTasks);
        add("interval tasks", intervalTasks);
        add("event handlers", eventHandlers);
        add("running timers", runningTimers);
        add("watched files", watchedFiles);
        add("GL objects", glObjects);
        return result;
    }
};

std::ostream& operator<<(std::ostream& stream, const Census& census)
{
    return stream << census.text();
}

std::size_t countRunningTimers()
{
    constexpr int manyTimers = 4000;
    std::size_t count = 0;
    for (int id = 1; id < manyTimers; ++id)
        count += QAbstractEventDispatcher::instance()->remainingTime(id) >= 0;
    return count;
}

/// The kernel lists every watch of every watcher of the process.
std::size_t countWatchedFiles()
{
    std::size_t count = 0;
    const QDir folder("/proc/self/fdinfo");
    for (const QString& name : folder.entryList(QDir::Files)) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadOnly))
            count += std::size_t(file.readAll().count("inotify wd:"));
    }
    return count;
}

/// Textures, buffers, lists, programs and shaders that OpenGL holds.
std::size_t countGlObjects(OsgViewerWidget& widget)
{
    constexpr GLuint manyNames = 20000;
    static_cast<osgQt::GLWidget&>(widget).makeCurrent();
    QOpenGLFunctions gl(QOpenGLContext::currentContext());
    std::size_t count = 0;
    for (GLuint name = 1; name < manyNames; ++name) {
        count += gl.glIsTexture(name) == GL_TRUE;
        count += gl.glIsBuffer(name) == GL_TRUE;
        count += gl.glIsProgram(name) == GL_TRUE;
        count += gl.glIsShader(name) == GL_TRUE;
        count += glIsList(name) == GL_TRUE;
    }
    return count;
}

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

    Census census()
    {
        Census result;
        result.actors = GameInside::actorsOf(game).size();
        result.joints = GameInside::jointsOf(game).size();
        result.materials = GameInside::materialsOf(game).size();
        result.transforms = GameInside::transformsOf(game).size();
        physx::PxScene* scene = GameInside::actorsOf(game).begin()->second->getScene();
        physx::PxPhysics& physics = scene->getPhysics();
        result.physicsObjects = scene->getNbConstraints() + physics.getNbMaterials() +
                                physics.getNbShapes() + physics.getNbConvexMeshes() +
                                scene->getNbActors(physx::PxActorTypeFlag::eRIGID_DYNAMIC |
                                                   physx::PxActorTypeFlag::eRIGID_STATIC);
        result.checkpoints = BlockCheckpoint::allCheckpoints.size();
        result.frameTasks = GameLoop::frameTaskCount();
        result.intervalTasks = GameLoop::intervalTaskCount();
        result.eventHandlers = game.getEventHandlers().size();
        result.runningTimers = countRunningTimers();
        result.watchedFiles = countWatchedFiles();
        result.glObjects = countGlObjects(widget);
        return result;
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
    const Census before = census();
    double memoryAfterFifty = 0.0;
    for (int i = 11; i <= 200; ++i) {
        changes(unsigned(i % 2));
        if (i == 50)
            memoryAfterFifty = residentMegabytes();
    }
    const double memoryAfterAll = residentMegabytes();
    changes(1);
    EXPECT_EQ(census(), before);
    RecordProperty("residentMegabytesAfter50", std::to_string(memoryAfterFifty));
    RecordProperty("residentMegabytesAfter200", std::to_string(memoryAfterAll));
    // A level of this size is some two megabytes: one that stayed would show ten times over.
    EXPECT_LT(memoryAfterAll - memoryAfterFifty, 12.0);
}

}  // namespace

#include "support/Census.h"

#include "frame/GameLoop.h"
#include "frame/OsgViewerWidget.h"
#include "level/BlockCheckpoint.h"
#include "support/GameInside.h"

#include <QAbstractEventDispatcher>
#include <QDir>
#include <QFile>
#include <QOpenGLContext>
#include <QOpenGLFunctions>

namespace {

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

}  // namespace

Census Census::of(Rollix& game, OsgViewerWidget& widget)
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

std::string Census::text() const
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

std::ostream& operator<<(std::ostream& stream, const Census& census)
{
    return stream << census.text();
}

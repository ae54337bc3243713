#pragma once

#include <cstddef>
#include <ostream>
#include <string>

class OsgViewerWidget;
class Rollix;

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

    /// Of the game as it is now; the widget's is the current context afterwards.
    static Census of(Rollix& game, OsgViewerWidget& widget);

    bool operator==(const Census& other) const { return text() == other.text(); }
    std::string text() const;
};

std::ostream& operator<<(std::ostream& stream, const Census& census);

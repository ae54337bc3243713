#include "base/UnreadableFile.h"

#include "base/Say.h"

#include <mutex>
#include <set>

namespace {

/// Paths that could not be read when they were last asked for.
class UnreadableFiles
{
public:
    /// Whether that is news.
    bool add(const std::string& path)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return paths.insert(path).second;
    }

    void remove(const std::string& path)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        paths.erase(path);
    }

private:
    std::mutex mutex;
    std::set<std::string> paths;
};

UnreadableFiles& unreadableFiles()
{
    static UnreadableFiles files;
    return files;
}

}  // namespace

void reportUnreadable(const std::string& what, const std::string& path,
                      const std::string& consequence)
{
    if (unreadableFiles().add(path))
        say("I cannot read the ", what, " ", path, ". ", consequence);
}

void noteReadable(const std::string& path)
{
    unreadableFiles().remove(path);
}

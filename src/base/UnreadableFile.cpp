#include "base/UnreadableFile.h"

#include "base/Say.h"

#include <mutex>
#include <set>

void reportUnreadable(const std::string& what, const std::string& path,
                      const std::string& consequence)
{
    static std::mutex mutex;
    static std::set<std::string> reported;
    std::lock_guard<std::mutex> lock(mutex);
    if (reported.insert(path).second)
        say("I cannot read the ", what, " ", path, ". ", consequence);
}

#include "base/DataFolder.h"

#include <system_error>

namespace fs = std::filesystem;

namespace {

// Of an installation, seen from the folder of its programs; no prefix is built in, so that it may
// lie anywhere and be moved.
const fs::path share = "../share/games/rollix";

bool holdsData(const fs::path& folder)
{
    std::error_code error;
    return fs::is_directory(folder / "data" / "Rollix", error);
}

}  // namespace

fs::path DataFolder::find(const fs::path& current, const fs::path& program)
{
    if (holdsData(current))
        return current;
    const fs::path installed = (program.parent_path() / share).lexically_normal();
    return holdsData(installed) ? installed : fs::path();
}

fs::path DataFolder::find()
{
    std::error_code error;
    return find(fs::current_path(error), fs::read_symlink("/proc/self/exe", error));
}

void DataFolder::enter()
{
    const fs::path folder = find();
    std::error_code error;
    if (!folder.empty())
        fs::current_path(folder, error);
}

#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

/// Does `count` pieces of work, each in a process of its own, as forked from this one, so that none
/// finds what another has left behind; `atATime` of them side by side. Gives what each of them
/// returned, empty for one that crashed. `progress` hears how many are done.
///
/// This process may have no thread and no window yet.
std::vector<std::string> inProcesses(std::size_t count, int atATime,
                                     const std::function<std::string(std::size_t)>& work,
                                     const std::function<void(std::size_t)>& progress);

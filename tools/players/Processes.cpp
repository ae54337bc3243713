#include "Processes.h"

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Child
{
    pid_t process;
    int output;
    std::size_t number;
};

[[noreturn]] void workAndEnd(int output, const std::string& result)
{
    std::size_t written = 0;
    while (written < result.size()) {
        const ssize_t count = write(output, result.data() + written, result.size() - written);
        if (count <= 0)
            _exit(1);
        written += std::size_t(count);
    }
    _exit(0);
}

/// False where the system gives no further process.
bool start(std::size_t number, const std::function<std::string(std::size_t)>& work,
           std::vector<Child>& children)
{
    int ends[2];
    if (pipe(ends) != 0)
        return false;
    const pid_t process = fork();
    if (process == 0) {
        close(ends[0]);
        // What the game says of a level is not what was asked for.
        if (!std::freopen("/dev/null", "w", stdout))
            _exit(1);
        workAndEnd(ends[1], work(number));
    }
    close(ends[1]);
    if (process < 0) {
        close(ends[0]);
        return false;
    }
    children.push_back({process, ends[0], number});
    return true;
}

/// Reads what there is; true at the end of it.
bool readFrom(const Child& child, std::string& result)
{
    char buffer[65536];
    const ssize_t count = read(child.output, buffer, sizeof(buffer));
    if (count > 0)
        result.append(buffer, std::size_t(count));
    return count <= 0;
}

void end(const Child& child, std::string& result)
{
    close(child.output);
    int status = 0;
    waitpid(child.process, &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        result.clear();
}

}  // namespace

std::vector<std::string> inProcesses(std::size_t count, int atATime,
                                     const std::function<std::string(std::size_t)>& work,
                                     const std::function<void(std::size_t)>& progress)
{
    std::cout.flush();
    std::vector<std::string> results(count);
    std::vector<Child> children;
    std::size_t started = 0;
    std::size_t done = 0;
    while (done < count) {
        while (started < count && int(children.size()) < std::max(1, atATime))
            if (!start(started++, work, children))
                ++done;
        std::vector<pollfd> waiting;
        waiting.reserve(children.size());
        for (const Child& child : children)
            waiting.push_back({child.output, POLLIN, 0});
        if (waiting.empty())
            continue;
        poll(waiting.data(), waiting.size(), -1);
        for (std::size_t i = waiting.size(); i-- > 0;) {
            if (waiting[i].revents == 0 || !readFrom(children[i], results[children[i].number]))
                continue;
            end(children[i], results[children[i].number]);
            children.erase(children.begin() + std::ptrdiff_t(i));
            progress(++done);
        }
    }
    return results;
}

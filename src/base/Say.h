#pragma once

#include <iostream>
#include <sstream>

/// The line to the player: one line on standard output, whole and flushed at once, because a
/// program that may be killed at any moment has no other log. Any thread.
template <typename... Parts>
void say(const Parts&... parts)
{
    std::ostringstream line;
    (line << ... << parts) << '\n';
    std::cout << line.str() << std::flush;
}

#pragma once

#include <iostream>

/// One line on standard output, flushed at once: the log of a program that may be killed at any
/// moment.
template <typename... Parts>
void say(const Parts&... parts)
{
    (std::cout << ... << parts) << std::endl;
}

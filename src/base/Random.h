#pragma once

#include <cstdlib>

/// A random number from 0 to 32767, from the upper bits of rand(). The draws of the game are made
/// for fifteen bits; of rand()'s 31 they take the upper ones, which are the better mixed.
inline int random15()
{
    static_assert(RAND_MAX == 0x7fffffff, "rand() is expected to give 31 bits");
    return std::rand() >> 16;  // NOLINT(concurrency-mt-unsafe): the C library here locks it
}

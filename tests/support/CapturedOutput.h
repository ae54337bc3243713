#pragma once

#include <iostream>
#include <sstream>
#include <string>

/// What goes to standard output while this lives. It can be read as it grows, so that a test waits
/// for a line and not for a time.
class CapturedOutput
{
public:
    CapturedOutput() : previous(std::cout.rdbuf(captured.rdbuf())) {}
    ~CapturedOutput() { std::cout.rdbuf(previous); }
    CapturedOutput(const CapturedOutput&) = delete;
    CapturedOutput& operator=(const CapturedOutput&) = delete;

    std::string text() const { return captured.str(); }
    int count(const std::string& part) const
    {
        int found = 0;
        const std::string all = text();
        for (auto at = all.find(part); at != std::string::npos; at = all.find(part, at + 1))
            ++found;
        return found;
    }

private:
    std::ostringstream captured;
    std::streambuf* previous;
};

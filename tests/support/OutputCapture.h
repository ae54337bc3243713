#pragma once

#include <string>
#include <vector>

/// Catches what goes to standard output, from any library, while it lives.
class OutputCapture
{
public:
    OutputCapture();
    ~OutputCapture();

    OutputCapture(const OutputCapture&) = delete;
    OutputCapture& operator=(const OutputCapture&) = delete;

    /// Everything so far.
    std::string text() const;
    /// The same by lines, without their ends.
    std::vector<std::string> lines() const;
    /// How often `part` stands in it so far.
    int count(const std::string& part) const;

private:
    int savedOutput;
    int file;
};

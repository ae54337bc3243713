#include "support/OutputCapture.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <unistd.h>

OutputCapture::OutputCapture()
{
    std::cout.flush();
    std::fflush(stdout);
    char name[] = "/tmp/rollix-output-XXXXXX";
    file = mkstemp(name);
    unlink(name);
    savedOutput = dup(STDOUT_FILENO);
    dup2(file, STDOUT_FILENO);
}

OutputCapture::~OutputCapture()
{
    const std::string captured = text();
    dup2(savedOutput, STDOUT_FILENO);
    // What a failed test says of itself has been caught as well.
    if (testing::Test::HasFailure())
        std::cout << captured << std::flush;
    close(savedOutput);
    close(file);
}

std::string OutputCapture::text() const
{
    std::cout.flush();
    std::fflush(stdout);
    std::string content;
    char buffer[4096];
    off_t offset = 0;
    ssize_t got = 0;
    while ((got = pread(file, buffer, sizeof buffer, offset)) > 0) {
        content.append(buffer, std::size_t(got));
        offset += got;
    }
    return content;
}

std::vector<std::string> OutputCapture::lines() const
{
    std::vector<std::string> result;
    std::istringstream stream(text());
    for (std::string line; std::getline(stream, line);)
        result.push_back(line);
    return result;
}

int OutputCapture::count(const std::string& part) const
{
    int found = 0;
    const std::string all = text();
    for (auto at = all.find(part); at != std::string::npos; at = all.find(part, at + 1))
        ++found;
    return found;
}

#pragma once

#include <string>

/// What the long trials share. Each is a test with a short form, which `./test --long` runs; the
/// command `./soak` asks for the long one by the environment.

/// How often to try; `shortForm` unless ROLLIX_SOAK_COUNT wants another number.
int soakCount(int shortForm);

/// Tells on standard error how far a trial is: one line over the other on a terminal, one every
/// ten seconds elsewhere.
class Progress
{
public:
    Progress(std::string what, int total);
    ~Progress();

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void at(int done, const std::string& note = "");

private:
    std::string what;
    int total;
    bool onTerminal;
    double last = 0.0;  // s
};

/// True time, whatever clock the program shows to its libraries.
double trueSeconds();

/// Processor time of all threads: what others do on the machine does not count.
double processorSeconds();

/// What is in memory, without what lies free in the heap's own lists.
double residentMegabytes();

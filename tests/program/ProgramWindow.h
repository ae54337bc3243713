#pragma once

#include <QImage>

#include <memory>

/// The window of another program, as the desktop sees it: it is found by the program's process,
/// sent key events, looked at, and closed as by its frame's button.
class ProgramWindow
{
public:
    ProgramWindow();
    ~ProgramWindow();

    /// False until the process shows a window.
    bool find(qint64 process);

    /// As the display numbers it; 0 before it is found.
    unsigned long id() const;

    /// By the names of the X keyboard, as "Left" or "plus".
    void presses(const char* key);
    void releases(const char* key);
    void types(const char* key);

    /// What it shows now, raised above all others; null if it cannot be seen.
    QImage image();

    /// Asks the program to close it.
    void close();

private:
    class Connection;

    std::unique_ptr<Connection> connection;
};

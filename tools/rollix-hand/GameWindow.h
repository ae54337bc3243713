#pragma once

#include <cstdint>
#include <map>
#include <memory>

class QKeyEvent;

/// The game's window, whoever started it: takes the keys that were pressed here, though another
/// window has the focus. By X11, as the game's window is one of its; elsewhere there is none.
class GameWindow
{
public:
    GameWindow();
    ~GameWindow();

    bool isThere() const;

    /// Hands on a press or a release, as it came. A key that repeats is none.
    void pass(const QKeyEvent& event);
    /// Releases whatever was passed on as pressed.
    void releaseKeys();

private:
    class Display;

    void send(std::uint32_t scanCode, std::uint32_t modifiers, bool press, std::uint32_t time);

    std::unique_ptr<Display> display;
    std::map<std::uint32_t, std::uint32_t> pressed;  // modifiers by scan code
};

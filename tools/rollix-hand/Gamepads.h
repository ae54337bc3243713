#pragma once

#include "PadHand.h"

#include <vector>

struct _SDL_GameController;
union SDL_Event;

/// All gamepads that are plugged in, now or later, whatever window has the focus. The one that was
/// touched last counts. Main thread.
class Gamepads
{
public:
    enum class Press { Tap, CircleOn, CircleBack };

    Gamepads();
    ~Gamepads();
    Gamepads(const Gamepads&) = delete;
    Gamepads& operator=(const Gamepads&) = delete;

    /// Takes in what has happened since the last poll.
    void poll();

    /// Whether somebody was at work on a pad in the last poll.
    bool wasTouched() const { return touched; }
    /// How the pad that counts is held; a pad at rest when there is none.
    const PadState& state() const { return held; }
    /// Buttons that came down in the last poll, in order.
    const std::vector<Press>& presses() const { return pressed; }
    /// Whether the last poll took away the pad that counts.
    bool hasLostPad() const { return lost; }

private:
    struct Pad
    {
        _SDL_GameController* controller;
        PadState before;  ///< when it was last moved
    };

    void serve(const SDL_Event& event);
    void press(int button);
    void open(int device);
    void close(int id);
    void touch(Pad& pad);
    std::vector<Pad>::iterator find(int id);

    std::vector<Pad> pads;
    _SDL_GameController* current = nullptr;
    PadState held;
    std::vector<Press> pressed;
    bool touched = false;
    bool lost = false;
};

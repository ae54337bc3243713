#pragma once

struct _SDL_Joystick;

/// A gamepad without a body, plugged in while this lives.
class VirtualPad
{
public:
    enum class Button { A, B, CrossUp, CrossDown };

    VirtualPad();
    ~VirtualPad();
    VirtualPad(const VirtualPad&) = delete;
    VirtualPad& operator=(const VirtualPad&) = delete;

    /// From -1 to 1, up and right above 0.
    void leftStick(double x, double y);
    void rightStick(double x, double y);
    void holds(Button button, bool down = true);
    void unplugs();

private:
    void moves(int axis, double value);

    _SDL_Joystick* joystick;
};

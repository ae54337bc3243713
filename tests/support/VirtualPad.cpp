#include "support/VirtualPad.h"

#define SDL_MAIN_HANDLED
#include <SDL.h>
#include <cmath>

VirtualPad::VirtualPad()
{
    SDL_SetMainReady();
    SDL_InitSubSystem(SDL_INIT_GAMECONTROLLER);
    const int device = SDL_JoystickAttachVirtual(
        SDL_JOYSTICK_TYPE_GAMECONTROLLER, SDL_CONTROLLER_AXIS_MAX, SDL_CONTROLLER_BUTTON_MAX, 0);
    joystick = SDL_JoystickOpen(device);
}

VirtualPad::~VirtualPad()
{
    unplugs();
    SDL_QuitSubSystem(SDL_INIT_GAMECONTROLLER);
}

void VirtualPad::leftStick(double x, double y)
{
    moves(SDL_CONTROLLER_AXIS_LEFTX, x);
    moves(SDL_CONTROLLER_AXIS_LEFTY, -y);
}

void VirtualPad::rightStick(double x, double y)
{
    moves(SDL_CONTROLLER_AXIS_RIGHTX, x);
    moves(SDL_CONTROLLER_AXIS_RIGHTY, -y);
}

void VirtualPad::holds(Button button, bool down)
{
    constexpr SDL_GameControllerButton buttons[] = {
        SDL_CONTROLLER_BUTTON_A, SDL_CONTROLLER_BUTTON_B, SDL_CONTROLLER_BUTTON_DPAD_UP,
        SDL_CONTROLLER_BUTTON_DPAD_DOWN};
    SDL_JoystickSetVirtualButton(joystick, buttons[int(button)], down ? 1 : 0);
}

void VirtualPad::unplugs()
{
    if (!joystick)
        return;
    const SDL_JoystickID id = SDL_JoystickInstanceID(joystick);
    for (int device = 0; device < SDL_NumJoysticks(); ++device) {
        if (SDL_JoystickGetDeviceInstanceID(device) == id) {
            SDL_JoystickDetachVirtual(device);
            break;
        }
    }
    SDL_JoystickClose(joystick);
    joystick = nullptr;
}

void VirtualPad::moves(int axis, double value)
{
    constexpr double farthest = 32767.0;
    SDL_JoystickSetVirtualAxis(joystick, axis, Sint16(std::lround(value * farthest)));
}

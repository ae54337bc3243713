#include "Gamepads.h"

#include <algorithm>

// There is no main() of that library in this program.
#define SDL_MAIN_HANDLED
#include <SDL.h>

namespace {

QVector2D stickOf(SDL_GameController* pad, SDL_GameControllerAxis x, SDL_GameControllerAxis y)
{
    constexpr float farthest = 32767.0f;
    return QVector2D(float(SDL_GameControllerGetAxis(pad, x)) / farthest,
                     float(-SDL_GameControllerGetAxis(pad, y)) / farthest);
}

int idOf(SDL_GameController* pad)
{
    return SDL_JoystickInstanceID(SDL_GameControllerGetJoystick(pad));
}

PadState stateOf(SDL_GameController* pad)
{
    PadState state;
    state.leftStick = stickOf(pad, SDL_CONTROLLER_AXIS_LEFTX, SDL_CONTROLLER_AXIS_LEFTY);
    state.rightStick = stickOf(pad, SDL_CONTROLLER_AXIS_RIGHTX, SDL_CONTROLLER_AXIS_RIGHTY);
    state.secondHand = SDL_GameControllerGetButton(pad, SDL_CONTROLLER_BUTTON_B);
    for (const auto button :
         {SDL_CONTROLLER_BUTTON_A, SDL_CONTROLLER_BUTTON_DPAD_UP, SDL_CONTROLLER_BUTTON_DPAD_DOWN})
        state.otherButton = state.otherButton || SDL_GameControllerGetButton(pad, button);
    return state;
}

}  // namespace

Gamepads::Gamepads()
{
    SDL_SetMainReady();
    // The game's window is the active one, or none of ours is.
    SDL_SetHint(SDL_HINT_JOYSTICK_ALLOW_BACKGROUND_EVENTS, "1");
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    // Without this part there are just no pads.
    SDL_InitSubSystem(SDL_INIT_GAMECONTROLLER);
    for (int device = 0; device < SDL_NumJoysticks(); ++device)
        open(device);
}

Gamepads::~Gamepads()
{
    for (const Pad& pad : pads)
        SDL_GameControllerClose(pad.controller);
    SDL_QuitSubSystem(SDL_INIT_GAMECONTROLLER);
}

void Gamepads::poll()
{
    pressed.clear();
    touched = false;
    lost = false;
    SDL_Event event;
    while (SDL_PollEvent(&event))
        serve(event);
    for (Pad& pad : pads) {
        const PadState now = stateOf(pad.controller);
        if (isMoved(pad.before, now)) {
            pad.before = now;
            if (isTouched(now))
                touch(pad);
        }
    }
    held = current ? stateOf(current) : PadState();
}

void Gamepads::serve(const SDL_Event& event)
{
    switch (event.type) {
    case SDL_CONTROLLERDEVICEADDED:
        open(event.cdevice.which);
        break;
    case SDL_CONTROLLERDEVICEREMOVED:
        close(event.cdevice.which);
        break;
    case SDL_CONTROLLERBUTTONDOWN: {
        // It may be up again by now.
        const auto pad = find(event.cbutton.which);
        if (pad != pads.end()) {
            touch(*pad);
            press(event.cbutton.button);
        }
        break;
    }
    default:
        break;
    }
}

void Gamepads::press(int button)
{
    switch (button) {
    case SDL_CONTROLLER_BUTTON_A:
        pressed.push_back(Press::Tap);
        break;
    case SDL_CONTROLLER_BUTTON_DPAD_DOWN:
        pressed.push_back(Press::CircleOn);
        break;
    case SDL_CONTROLLER_BUTTON_DPAD_UP:
        pressed.push_back(Press::CircleBack);
        break;
    default:
        break;
    }
}

void Gamepads::touch(Pad& pad)
{
    current = pad.controller;
    touched = true;
}

// The number of a device changes with each that comes or goes; its id does not.
void Gamepads::open(int device)
{
    if (!SDL_IsGameController(device) ||
        find(SDL_JoystickGetDeviceInstanceID(device)) != pads.end())
        return;
    if (SDL_GameController* controller = SDL_GameControllerOpen(device))
        pads.push_back({controller, PadState()});
}

void Gamepads::close(int id)
{
    const auto pad = find(id);
    if (pad == pads.end())
        return;
    if (pad->controller == current) {
        current = nullptr;
        lost = true;
    }
    SDL_GameControllerClose(pad->controller);
    pads.erase(pad);
}

std::vector<Gamepads::Pad>::iterator Gamepads::find(int id)
{
    return std::find_if(
        pads.begin(), pads.end(), [id](const Pad& pad) { return idOf(pad.controller) == id; });
}

#include "GameWindow.h"

#include <QKeyEvent>

#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>
#include <xcb/xcb.h>

namespace {

// As the toolkit names a window's program.
const std::string gameName = "rollix";
// The game's window is the only one of its program that is larger.
constexpr int leastSize = 10;

template <class Reply>
using Owned = std::unique_ptr<Reply, decltype(&std::free)>;

template <class Reply>
Owned<Reply> owned(Reply* reply)
{
    return Owned<Reply>(reply, &std::free);
}

}  // namespace

/// A connection of its own. Errors of windows that have just gone come as events that nobody reads.
class GameWindow::Display
{
public:
    Display() : connection(xcb_connect(nullptr, &screen)) {}
    ~Display() { xcb_disconnect(connection); }

    xcb_window_t findGame() const
    {
        if (xcb_connection_has_error(connection))
            return XCB_NONE;
        auto root = xcb_setup_roots_iterator(xcb_get_setup(connection));
        for (int i = 0; i < screen && root.rem > 1; ++i)
            xcb_screen_next(&root);
        // A window manager puts windows into frames of its own.
        std::vector<xcb_window_t> windows{root.data->root};
        for (std::size_t i = 0; i < windows.size(); ++i) {
            if (isGame(windows[i]))
                return windows[i];
            const auto tree = owned(
                xcb_query_tree_reply(connection, xcb_query_tree(connection, windows[i]), nullptr));
            if (tree) {
                const xcb_window_t* children = xcb_query_tree_children(tree.get());
                windows.insert(windows.end(), children,
                               children + xcb_query_tree_children_length(tree.get()));
            }
        }
        return XCB_NONE;
    }

    void sendKey(xcb_window_t window, std::uint8_t key, std::uint16_t state, bool press,
                 std::uint32_t time)
    {
        xcb_key_press_event_t event = {};
        event.response_type = press ? XCB_KEY_PRESS : XCB_KEY_RELEASE;
        event.detail = key;
        event.time = time;
        event.root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
        event.event = window;
        event.state = state;
        event.same_screen = 1;
        xcb_send_event(connection, 1, window,
                       press ? XCB_EVENT_MASK_KEY_PRESS : XCB_EVENT_MASK_KEY_RELEASE,
                       reinterpret_cast<const char*>(&event));
        xcb_flush(connection);
        while (const auto error = owned(xcb_poll_for_event(connection)))
            continue;
    }

private:
    bool isGame(xcb_window_t window) const
    {
        constexpr std::uint32_t longest = 64;
        const auto name = owned(xcb_get_property_reply(
            connection,
            xcb_get_property(connection, 0, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, longest),
            nullptr));
        if (!name)
            return false;
        const auto* text = static_cast<const char*>(xcb_get_property_value(name.get()));
        const auto length = static_cast<std::size_t>(xcb_get_property_value_length(name.get()));
        // Two names stand there, each with its end; the first is the program's.
        if (std::string(text, strnlen(text, length)) != gameName)
            return false;
        const auto size = owned(
            xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
        return size && size->width > leastSize;
    }

    int screen = 0;
    xcb_connection_t* connection;
};

GameWindow::GameWindow() : display(std::make_unique<Display>()) {}

GameWindow::~GameWindow()
{
    releaseKeys();
}

bool GameWindow::isThere() const
{
    return display->findGame() != XCB_NONE;
}

void GameWindow::pass(const QKeyEvent& event)
{
    if (event.isAutoRepeat())
        return;
    const bool press = event.type() == QEvent::KeyPress;
    const std::uint32_t key = event.nativeScanCode();
    if (press)
        pressed[key] = event.nativeModifiers();
    else if (pressed.erase(key) == 0)
        return;
    send(key, event.nativeModifiers(), press, static_cast<std::uint32_t>(event.timestamp()));
}

void GameWindow::releaseKeys()
{
    for (const auto& [key, modifiers] : std::exchange(pressed, {}))
        send(key, modifiers, false, XCB_CURRENT_TIME);
}

void GameWindow::send(std::uint32_t scanCode, std::uint32_t modifiers, bool press,
                      std::uint32_t time)
{
    const xcb_window_t window = display->findGame();
    if (window != XCB_NONE)
        display->sendKey(window, static_cast<std::uint8_t>(scanCode),
                         static_cast<std::uint16_t>(modifiers), press, time);
}

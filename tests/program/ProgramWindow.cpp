#include "program/ProgramWindow.h"

// Last: its macros bear the names of half of everything.
#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace {

/// A window may go between two calls about it; that is no reason to die.
int ignoreError(Display*, XErrorEvent*)
{
    return 0;
}

}  // namespace

class ProgramWindow::Connection
{
public:
    Connection() : display(XOpenDisplay(nullptr)), before(XSetErrorHandler(ignoreError)) {}

    ~Connection()
    {
        if (display)
            XCloseDisplay(display);
        XSetErrorHandler(before);
    }

    bool belongsTo(Window candidate, qint64 process) const
    {
        Atom type = 0;
        int format = 0;
        unsigned long count = 0;
        unsigned long rest = 0;
        unsigned char* data = nullptr;
        const Atom name = XInternAtom(display, "_NET_WM_PID", False);
        XGetWindowProperty(display, candidate, name, 0, 1, False, XA_CARDINAL, &type, &format,
                           &count, &rest, &data);
        const bool matches =
            data && count == 1 && qint64(*reinterpret_cast<unsigned long*>(data)) == process;
        if (data)
            XFree(data);
        return matches;
    }

    bool isSeen(Window candidate) const
    {
        XWindowAttributes attributes;
        return XGetWindowAttributes(display, candidate, &attributes) &&
               attributes.map_state == IsViewable && attributes.width > 10;
    }

    bool find(qint64 process)
    {
        if (!display)
            return false;
        Window root = 0;
        Window parent = 0;
        Window* children = nullptr;
        unsigned int count = 0;
        if (!XQueryTree(display, DefaultRootWindow(display), &root, &parent, &children, &count))
            return false;
        for (unsigned int i = 0; i < count; ++i)
            if (belongsTo(children[i], process) && isSeen(children[i]))
                window = children[i];
        if (children)
            XFree(children);
        return window != 0;
    }

    unsigned long id() const { return window; }

    void sendKey(int type, const char* name)
    {
        const KeySym symbol = XStringToKeysym(name);
        XEvent event = {};
        event.xkey.type = type;
        event.xkey.display = display;
        event.xkey.window = window;
        event.xkey.root = DefaultRootWindow(display);
        event.xkey.same_screen = True;
        // A release and a press of one moment would be taken for a key that repeats.
        event.xkey.time = time += 20;
        event.xkey.keycode = XKeysymToKeycode(display, symbol);
        if (XkbKeycodeToKeysym(display, KeyCode(event.xkey.keycode), 0, 0) != symbol)
            event.xkey.state = ShiftMask;
        XSendEvent(display, window, True, type == KeyPress ? KeyPressMask : KeyReleaseMask, &event);
        XFlush(display);
    }

    QImage image()
    {
        XWindowAttributes attributes;
        XRaiseWindow(display, window);
        XSync(display, False);
        if (!XGetWindowAttributes(display, window, &attributes))
            return {};
        XImage* pixels = XGetImage(display, window, 0, 0, unsigned(attributes.width),
                                   unsigned(attributes.height), AllPlanes, ZPixmap);
        if (!pixels)
            return {};
        QImage result(pixels->width, pixels->height, QImage::Format_RGB32);
        for (int y = 0; y < pixels->height; ++y)
            for (int x = 0; x < pixels->width; ++x)
                result.setPixel(x, y, 0xff000000u | QRgb(XGetPixel(pixels, x, y)));
        XDestroyImage(pixels);
        return result;
    }

    void close()
    {
        XEvent event = {};
        event.xclient.type = ClientMessage;
        event.xclient.window = window;
        event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
        event.xclient.format = 32;
        event.xclient.data.l[0] = long(XInternAtom(display, "WM_DELETE_WINDOW", False));
        event.xclient.data.l[1] = CurrentTime;
        XSendEvent(display, window, False, NoEventMask, &event);
        XFlush(display);
    }

private:
    Display* display;
    XErrorHandler before;
    Window window = 0;
    Time time = 1000;  // milliseconds, of the last key event
};

ProgramWindow::ProgramWindow() : connection(std::make_unique<Connection>()) {}

ProgramWindow::~ProgramWindow() = default;

bool ProgramWindow::find(qint64 process)
{
    return connection->find(process);
}

void ProgramWindow::presses(const char* key)
{
    connection->sendKey(KeyPress, key);
}

void ProgramWindow::releases(const char* key)
{
    connection->sendKey(KeyRelease, key);
}

unsigned long ProgramWindow::id() const
{
    return connection->id();
}

void ProgramWindow::types(const char* key)
{
    presses(key);
    releases(key);
}

QImage ProgramWindow::image()
{
    return connection->image();
}

void ProgramWindow::close()
{
    connection->close();
}

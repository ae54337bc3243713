#pragma once

#include <cstdint>
#include <memory>

/// The sensor interface that the game is written for, on the tracking service's WebSocket. It holds
/// what the game calls and no more, under the names of the vendor's library, so that the library
/// can take this folder's place without a change anywhere else.
///
/// Everything read from a frame is a value that shares immutable data: copies are cheap, outlive
/// the frame and may cross threads. What a frame does not hold is an invalid object with zero
/// vectors, never a null and never an error.
///
/// Frame of reference: right-handed, origin at the sensor, x to the right, y up, z towards the
/// player. Millimetres; directions are unit vectors.
namespace Leap {

class Listener;
class Session;
class ServiceRunner;
struct FrameData;
struct GestureData;
struct HandData;

struct Vector
{
    Vector() = default;
    Vector(float x_, float y_, float z_) : x(x_), y(y_), z(z_) {}

    float magnitudeSquared() const { return x * x + y * y + z * z; }
    float dot(const Vector& other) const { return x * other.x + y * other.y + z * other.z; }

    /// Radians, from 0 to pi; 0 when one of the two is the zero vector.
    float angleTo(const Vector& other) const;

    bool operator==(const Vector& other) const
    {
        return x == other.x && y == other.y && z == other.z;
    }

    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;
};

/// A finger.
class Pointable
{
public:
    Pointable() = default;
    Pointable(std::int64_t id, const Vector& direction);

    std::int64_t id() const { return id_; }
    /// Where the finger points; the zero vector for an invalid pointable.
    Vector direction() const { return direction_; }
    bool isValid() const { return valid; }

private:
    std::int64_t id_ = -1;
    Vector direction_;
    bool valid = false;
};

class Hand
{
public:
    Hand() = default;
    Hand(std::shared_ptr<const FrameData> frame, std::size_t index);

    /// The same for as long as the sensor keeps track of this hand.
    std::int64_t id() const;
    Vector palmPosition() const;
    /// Out of the palm: a hand that lies flat gives (0, -1, 0), left and right alike.
    Vector palmNormal() const;
    /// From the palm to the fingers: a hand that points at the screen gives (0, 0, -1).
    Vector direction() const;
    bool isValid() const { return frame != nullptr; }

private:
    const HandData& data() const;

    std::shared_ptr<const FrameData> frame;
    std::size_t index = 0;
};

/// The hands of one frame, in the order in which the service lists them, which means nothing.
class HandList
{
public:
    HandList() = default;
    explicit HandList(std::shared_ptr<const FrameData> frame);

    int count() const;
    bool isEmpty() const { return count() == 0; }
    /// An invalid hand when the index is out of range.
    Hand operator[](int index) const;

private:
    std::shared_ptr<const FrameData> frame;
};

class Gesture
{
public:
    enum Type {
        TYPE_INVALID = -1,
        TYPE_SWIPE = 1,
        TYPE_CIRCLE = 4,
        TYPE_SCREEN_TAP = 5,
        TYPE_KEY_TAP = 6
    };
    enum State { STATE_INVALID = -1, STATE_START = 1, STATE_UPDATE = 2, STATE_STOP = 3 };

    Gesture() = default;
    Gesture(std::shared_ptr<const FrameData> frame, std::size_t index);

    Type type() const;
    State state() const;
    /// The same in all reports of one movement.
    std::int64_t id() const;
    bool isValid() const { return frame != nullptr; }

protected:
    const GestureData& data() const;

private:
    std::shared_ptr<const FrameData> frame;
    std::size_t index = 0;
};

/// A gesture seen as a circle; of another type of gesture it makes an invalid one.
class CircleGesture : public Gesture
{
public:
    CircleGesture() = default;
    explicit CircleGesture(const Gesture& gesture);

    /// Turns since the movement began.
    float progress() const;
    /// Right-hand rule of the movement: a circle that is clockwise for the player has a normal on
    /// the side to which the finger points.
    Vector normal() const;
    /// The finger that draws; invalid when the service does not tell.
    Pointable pointable() const;
};

class GestureList
{
public:
    GestureList() = default;
    explicit GestureList(std::shared_ptr<const FrameData> frame);

    int count() const;
    /// An invalid gesture when the index is out of range.
    Gesture operator[](int index) const;

private:
    std::shared_ptr<const FrameData> frame;
};

class Frame
{
public:
    Frame() = default;
    explicit Frame(std::shared_ptr<const FrameData> data);

    std::int64_t id() const;
    HandList hands() const { return HandList(data); }
    /// Also holds the gestures of frames that were never delivered because newer ones came first:
    /// a tap lives in one frame only and would be lost with it.
    GestureList gestures() const { return GestureList(data); }
    bool isValid() const { return data != nullptr; }

private:
    std::shared_ptr<const FrameData> data;
};

/// The connection to the sensor service. It looks for the service from its construction on and
/// never gives up; copies share the connection, and the last of them to go ends it. With no service
/// nothing ever happens, silently.
///
/// All operations may be called from any thread.
class Controller
{
public:
    Controller();
    ~Controller();
    Controller(const Controller&);
    Controller& operator=(const Controller&);

    /// The listener stays the caller's, and has to be removed before it dies. False when it was
    /// there already.
    bool addListener(Listener& listener);

    /// Returns when no call to the listener is in progress and none will follow; from inside one of
    /// the listener's own calls it returns at once, and that call is the last. onExit is called
    /// from in here. The caller must hold no lock that the listener's calls take. False when the
    /// listener was not there.
    bool removeListener(Listener& listener);

    /// With history 0, the newest frame, which inside a listener's call is the frame that it is
    /// called for, until it returns. No older frames are kept: others are invalid.
    Frame frame(int history = 0) const;

    /// All types are off at first.
    void enableGesture(Gesture::Type type, bool enable = true) const;

private:
    friend class Session;
    /// The controller that listeners are handed: it does not keep the connection going.
    explicit Controller(std::shared_ptr<Session> session);

    std::shared_ptr<Session> session;
    std::shared_ptr<ServiceRunner> runner;
};

/// Called on a thread of the controller's own, one call at a time; only onExit comes on the thread
/// that removes the listener. What happens before a listener is added or while it is busy comes to
/// it later as one call each: onInit, onConnect, onFocusGained, then the newest frame.
class Listener
{
public:
    virtual ~Listener() = default;

    virtual void onInit(const Controller&) {}
    virtual void onConnect(const Controller&) {}
    virtual void onDisconnect(const Controller&) {}
    virtual void onExit(const Controller&) {}
    virtual void onFrame(const Controller&) {}
    virtual void onFocusGained(const Controller&) {}
    virtual void onFocusLost(const Controller&) {}
};

}  // namespace Leap

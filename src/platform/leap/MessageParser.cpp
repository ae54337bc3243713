#include "platform/leap/MessageParser.h"

#include "platform/leap/MessageReader.h"
#include "platform/leap/VectorMath.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <set>
#include <string>

namespace Leap {

namespace {

using Json = nlohmann::json;

const std::set<std::string_view> fieldNames{
    "direction",    "event",       "extended", "gestures",       "handId",
    "hands",        "id",          "normal",   "palmNormal",     "palmPosition",
    "pointableIds", "pointables",  "progress", "serviceVersion", "state",
    "timestamp",    "tipPosition", "tool",     "type",           "version"};

constexpr std::size_t mostHands = 8;
constexpr std::size_t mostPointables = 64;
constexpr std::size_t mostGestures = 64;
constexpr double farthestPosition = 10000.0;         // mm
constexpr double largestWhole = 9007199254740992.0;  // 2^53: from here on doubles skip numbers
constexpr std::int64_t none = std::numeric_limits<std::int64_t>::min();  // beyond largestWhole
constexpr float shortestDirection = 0.5f;
constexpr float longestDirection = 1.5f;
constexpr double mostTurns = 1e6;

// Null where there is no such field, or no object to have it.
const Json& field(const Json& object, const char* name)
{
    static const Json nothing;
    const auto found = object.find(name);
    return found == object.end() ? nothing : *found;
}

// Of what is no array, none.
const Json& entries(const Json& value)
{
    static const Json empty = Json::array();
    return value.is_array() ? value : empty;
}

bool flag(const Json& value, bool otherwise)
{
    return value.is_boolean() ? value.get<bool>() : otherwise;
}

std::optional<double> number(const Json& value)
{
    return value.is_number() ? std::optional(value.get<double>()) : std::nullopt;
}

std::string text(const Json& value)
{
    return value.is_string() ? value.get<std::string>() : std::string();
}

std::optional<std::int64_t> wholeNumber(const Json& value)
{
    const auto read = number(value);
    if (!read || std::fabs(*read) > largestWhole || *read != std::floor(*read))
        return std::nullopt;
    return std::int64_t(*read);
}

std::optional<Vector> vector(const Json& value, double limit)
{
    const Json& parts = entries(value);
    if (parts.size() != 3)
        return std::nullopt;
    float part[3] = {};
    for (std::size_t i = 0; i < 3; ++i) {
        const auto read = number(parts[i]);
        if (!read || std::fabs(*read) > limit)
            return std::nullopt;
        part[i] = float(*read);
    }
    return Vector(part[0], part[1], part[2]);
}

std::optional<Vector> direction(const Json& value)
{
    const std::optional<Vector> read = vector(value, longestDirection);
    if (!read)
        return std::nullopt;
    const float size = length(*read);
    if (!(size >= shortestDirection && size <= longestDirection))
        return std::nullopt;
    return normalized(*read);
}

std::optional<HandData> hand(const Json& object)
{
    const auto id = wholeNumber(field(object, "id"));
    const auto position = vector(field(object, "palmPosition"), farthestPosition);
    const auto normal = direction(field(object, "palmNormal"));
    const auto fingers = direction(field(object, "direction"));
    if (!id || !position || !normal || !fingers)
        return std::nullopt;
    HandData data;
    data.id = *id;
    data.palmPosition = *position;
    data.palmNormal = *normal;
    data.direction = *fingers;
    return data;
}

// With what is left of a hand that was dropped, its fingers go as well.
void readHands(const Json& list, FrameData& frame, std::set<std::int64_t>& dropped)
{
    std::set<std::int64_t> known;
    for (const Json& object : entries(list)) {
        if (frame.hands.size() == mostHands)
            return;
        if (const auto data = hand(object)) {
            if (known.insert(data->id).second)
                frame.hands.push_back(*data);
        } else if (const auto id = wholeNumber(field(object, "id"))) {
            dropped.insert(*id);
        }
    }
}

void readPointables(const Json& list, FrameData& frame, const std::set<std::int64_t>& droppedHands)
{
    for (const Json& object : entries(list)) {
        if (frame.pointables.size() == mostPointables)
            return;
        const auto id = wholeNumber(field(object, "id"));
        const auto handId = wholeNumber(field(object, "handId"));
        if (!id || (handId && droppedHands.count(*handId)))
            continue;
        PointableData data;
        data.id = *id;
        data.handId = handId.value_or(-1);
        data.tipPosition =
            vector(field(object, "tipPosition"), farthestPosition).value_or(Vector());
        data.direction = direction(field(object, "direction")).value_or(Vector());
        data.extended = flag(field(object, "extended"), true);
        const auto finger = wholeNumber(field(object, "type"));
        const bool isTool = flag(field(object, "tool"), false);
        data.finger = finger && !isTool && *finger >= 0 && *finger <= 4 ? int(*finger) : -1;
        frame.pointables.push_back(data);
    }
}

Gesture::Type gestureType(const std::string& name)
{
    if (name == "circle")
        return Gesture::TYPE_CIRCLE;
    if (name == "screenTap")
        return Gesture::TYPE_SCREEN_TAP;
    if (name == "swipe")
        return Gesture::TYPE_SWIPE;
    if (name == "keyTap")
        return Gesture::TYPE_KEY_TAP;
    return Gesture::TYPE_INVALID;
}

Gesture::State gestureState(const std::string& name)
{
    if (name == "start")
        return Gesture::STATE_START;
    if (name == "update")
        return Gesture::STATE_UPDATE;
    if (name == "stop")
        return Gesture::STATE_STOP;
    return Gesture::STATE_INVALID;
}

Pointable pointableOf(const Json& gesture, const FrameData& frame)
{
    const Json& ids = entries(field(gesture, "pointableIds"));
    const std::int64_t id = ids.empty() ? none : wholeNumber(ids[0]).value_or(none);
    const auto found =
        std::find_if(frame.pointables.begin(), frame.pointables.end(),
                     [id](const PointableData& pointable) { return pointable.id == id; });
    return found == frame.pointables.end() ? Pointable() : Pointable(found->id, found->direction);
}

void readGestures(const Json& list, FrameData& frame)
{
    for (const Json& object : entries(list)) {
        if (frame.gestures.size() == mostGestures)
            return;
        const auto id = wholeNumber(field(object, "id"));
        GestureData data;
        data.type = gestureType(text(field(object, "type")));
        data.state = gestureState(text(field(object, "state")));
        if (!id || data.type == Gesture::TYPE_INVALID || data.state == Gesture::STATE_INVALID)
            continue;
        data.id = *id;
        const double progress = number(field(object, "progress")).value_or(0.0);
        data.progress = progress >= 0.0 && progress <= mostTurns ? float(progress) : 0.0f;
        data.normal = direction(field(object, "normal")).value_or(Vector());
        data.pointable = pointableOf(object, frame);
        frame.gestures.push_back(data);
    }
}

Message helloMessage(const Json& object)
{
    Message message;
    message.kind = Message::Kind::Hello;
    const auto version = wholeNumber(field(object, "version"));
    message.version = version && std::abs(*version) <= 1000 ? int(*version) : 0;
    message.serviceVersion = text(field(object, "serviceVersion"));
    return message;
}

Message frameMessage(const Json& object)
{
    Message message;
    const auto id = wholeNumber(field(object, "id"));
    const auto timestamp = wholeNumber(field(object, "timestamp"));
    const Json& hands = field(object, "hands");
    if (!id || !timestamp || !hands.is_array())
        return message;
    message.kind = Message::Kind::Frame;
    message.frame.id = *id;
    message.frame.timestamp = *timestamp;
    std::set<std::int64_t> droppedHands;
    readHands(hands, message.frame, droppedHands);
    readPointables(field(object, "pointables"), message.frame, droppedHands);
    readGestures(field(object, "gestures"), message.frame);
    return message;
}

}  // namespace

Message parseMessage(std::string_view text)
{
    if (text.size() > longestMessage)
        return Message();
    const Json value = readJson(text, fieldNames);
    if (!value.is_object())
        return Message();
    if (value.contains("event")) {
        Message message;
        message.kind = Message::Kind::Event;
        return message;
    }
    if (value.contains("version"))
        return helloMessage(value);
    return frameMessage(value);
}

}  // namespace Leap

#include "platform/leap/MessageParser.h"

#include "platform/leap/Json.h"
#include "platform/leap/VectorMath.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Leap {

namespace {

// A frame needs six levels; two hands with all fingers have a thousand values.
constexpr JsonLimits limits{16, 50000};
constexpr std::size_t mostHands = 8;
constexpr std::size_t mostPointables = 64;
constexpr std::size_t mostGestures = 64;
constexpr double farthestPosition = 10000.0;         // mm
constexpr double largestWhole = 9007199254740992.0;  // 2^53: from here on doubles skip numbers
constexpr float shortestDirection = 0.5f;
constexpr float longestDirection = 1.5f;
constexpr double mostTurns = 1e6;

// Of what is no array, none.
const std::vector<JsonValue>& entries(const JsonValue& value)
{
    static const std::vector<JsonValue> none;
    return value.isArray() ? value.items : none;
}

bool flag(const JsonValue& value, bool otherwise)
{
    return value.kind == JsonValue::Kind::Boolean ? value.boolean : otherwise;
}

std::optional<std::int64_t> wholeNumber(const JsonValue& value)
{
    const double number = value.number;
    if (value.kind != JsonValue::Kind::Number || !(std::fabs(number) <= largestWhole) ||
        number != std::floor(number)) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(number);
}

std::optional<Vector> vector(const JsonValue& value, double limit)
{
    const auto& parts = entries(value);
    if (parts.size() != 3) {
        return std::nullopt;
    }
    float part[3] = {};
    for (std::size_t i = 0; i < 3; ++i) {
        if (parts[i].kind != JsonValue::Kind::Number || !(std::fabs(parts[i].number) <= limit)) {
            return std::nullopt;
        }
        part[i] = static_cast<float>(parts[i].number);
    }
    return Vector(part[0], part[1], part[2]);
}

std::optional<Vector> direction(const JsonValue& value)
{
    const std::optional<Vector> read = vector(value, longestDirection);
    if (!read) {
        return std::nullopt;
    }
    const float size = length(*read);
    if (!(size >= shortestDirection && size <= longestDirection)) {
        return std::nullopt;
    }
    return normalized(*read);
}

std::optional<HandData> hand(const JsonValue& object)
{
    const auto id = wholeNumber(object["id"]);
    const auto position = vector(object["palmPosition"], farthestPosition);
    const auto normal = direction(object["palmNormal"]);
    const auto fingers = direction(object["direction"]);
    if (!id || !position || !normal || !fingers) {
        return std::nullopt;
    }
    HandData data;
    data.id = *id;
    data.palmPosition = *position;
    data.palmNormal = *normal;
    data.direction = *fingers;
    return data;
}

// With what is left of a hand that was dropped, its fingers go as well.
void readHands(const JsonValue& list, FrameData& frame, std::set<std::int64_t>& dropped)
{
    std::set<std::int64_t> known;
    for (const JsonValue& object : entries(list)) {
        if (frame.hands.size() == mostHands) {
            return;
        }
        if (const auto data = hand(object)) {
            if (known.insert(data->id).second) {
                frame.hands.push_back(*data);
            }
        } else if (const auto id = wholeNumber(object["id"])) {
            dropped.insert(*id);
        }
    }
}

void readPointables(const JsonValue& list, FrameData& frame,
                    const std::set<std::int64_t>& droppedHands)
{
    for (const JsonValue& object : entries(list)) {
        if (frame.pointables.size() == mostPointables) {
            return;
        }
        const auto id = wholeNumber(object["id"]);
        const auto handId = wholeNumber(object["handId"]);
        if (!id || (handId && droppedHands.count(*handId))) {
            continue;
        }
        PointableData data;
        data.id = *id;
        data.handId = handId.value_or(-1);
        data.tipPosition = vector(object["tipPosition"], farthestPosition).value_or(Vector());
        data.direction = direction(object["direction"]).value_or(Vector());
        data.extended = flag(object["extended"], true);
        const auto finger = wholeNumber(object["type"]);
        const bool isTool = flag(object["tool"], false);
        data.finger =
            finger && !isTool && *finger >= 0 && *finger <= 4 ? static_cast<int>(*finger) : -1;
        frame.pointables.push_back(data);
    }
}

Gesture::Type gestureType(const std::string& name)
{
    if (name == "circle") {
        return Gesture::TYPE_CIRCLE;
    }
    if (name == "screenTap") {
        return Gesture::TYPE_SCREEN_TAP;
    }
    if (name == "swipe") {
        return Gesture::TYPE_SWIPE;
    }
    if (name == "keyTap") {
        return Gesture::TYPE_KEY_TAP;
    }
    return Gesture::TYPE_INVALID;
}

Gesture::State gestureState(const std::string& name)
{
    if (name == "start") {
        return Gesture::STATE_START;
    }
    if (name == "update") {
        return Gesture::STATE_UPDATE;
    }
    if (name == "stop") {
        return Gesture::STATE_STOP;
    }
    return Gesture::STATE_INVALID;
}

Pointable pointableOf(const JsonValue& gesture, const FrameData& frame)
{
    const auto& ids = entries(gesture["pointableIds"]);
    const auto id = ids.empty() ? std::nullopt : wholeNumber(ids[0]);
    const auto found =
        std::find_if(frame.pointables.begin(), frame.pointables.end(),
                     [&](const PointableData& pointable) { return id && pointable.id == *id; });
    return found == frame.pointables.end() ? Pointable() : Pointable(found->id, found->direction);
}

void readGestures(const JsonValue& list, FrameData& frame)
{
    for (const JsonValue& object : entries(list)) {
        if (frame.gestures.size() == mostGestures) {
            return;
        }
        const auto id = wholeNumber(object["id"]);
        GestureData data;
        data.type = gestureType(object["type"].text);
        data.state = gestureState(object["state"].text);
        if (!id || data.type == Gesture::TYPE_INVALID || data.state == Gesture::STATE_INVALID) {
            continue;
        }
        data.id = *id;
        const double progress = object["progress"].number;
        data.progress =
            progress >= 0.0 && progress <= mostTurns ? static_cast<float>(progress) : 0.0f;
        data.normal = direction(object["normal"]).value_or(Vector());
        data.pointable = pointableOf(object, frame);
        frame.gestures.push_back(data);
    }
}

Message helloMessage(const JsonValue& object)
{
    Message message;
    message.kind = Message::Kind::Hello;
    const auto version = wholeNumber(object["version"]);
    message.version = version && std::abs(*version) <= 1000 ? static_cast<int>(*version) : 0;
    message.serviceVersion = object["serviceVersion"].text;
    return message;
}

Message frameMessage(const JsonValue& object)
{
    Message message;
    const auto id = wholeNumber(object["id"]);
    const auto timestamp = wholeNumber(object["timestamp"]);
    const JsonValue& hands = object["hands"];
    if (!id || !timestamp || !hands.isArray()) {
        return message;
    }
    message.kind = Message::Kind::Frame;
    message.frame.id = *id;
    message.frame.timestamp = *timestamp;
    std::set<std::int64_t> droppedHands;
    readHands(hands, message.frame, droppedHands);
    readPointables(object["pointables"], message.frame, droppedHands);
    readGestures(object["gestures"], message.frame);
    return message;
}

}  // namespace

Message parseMessage(std::string_view text)
{
    if (text.size() > longestMessage) {
        return Message();
    }
    const auto value = parseJson(text, limits);
    if (!value || !value->isObject()) {
        return Message();
    }
    if (value->has("event")) {
        Message message;
        message.kind = Message::Kind::Event;
        return message;
    }
    if (value->has("version")) {
        return helloMessage(*value);
    }
    return frameMessage(*value);
}

}  // namespace Leap

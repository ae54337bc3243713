#include "platform/leap/MessageParser.h"

#include "platform/leap/VectorMath.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <algorithm>

#include <cmath>
#include <optional>
#include <set>

namespace Leap {

namespace {

constexpr int deepestNesting = 16;  // a frame needs 6
constexpr std::size_t mostHands = 8;
constexpr std::size_t mostPointables = 64;
constexpr std::size_t mostGestures = 64;
constexpr double farthestPosition = 10000.0;         // mm
constexpr double fastestSpeed = 100000.0;            // mm/s
constexpr double largestWhole = 9007199254740992.0;  // 2^53: from here on doubles skip numbers
constexpr float shortestDirection = 0.5f;
constexpr float longestDirection = 1.5f;
constexpr double mostTurns = 1e6;

// The parser of the library recurses; this keeps a hostile message from using its depth.
bool isNestedTooDeep(const QByteArray& text)
{
    int depth = 0;
    bool inString = false;
    for (int i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inString) {
            if (c == '\\') {
                ++i;
            } else if (c == '"') {
                inString = false;
            }
        } else if (c == '"') {
            inString = true;
        } else if (c == '{' || c == '[') {
            if (++depth > deepestNesting) {
                return true;
            }
        } else if (c == '}' || c == ']') {
            --depth;
        }
    }
    return false;
}

std::optional<std::int64_t> wholeNumber(const QJsonValue& value)
{
    const double number = value.isDouble() ? value.toDouble() : 0.5;
    if (!(std::fabs(number) <= largestWhole) || number != std::floor(number)) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(number);
}

std::optional<Vector> vector(const QJsonValue& value, double limit)
{
    const QJsonArray parts = value.toArray();
    if (parts.size() != 3) {
        return std::nullopt;
    }
    float part[3] = {};
    for (int i = 0; i < 3; ++i) {
        const QJsonValue number = parts.at(i);
        if (!number.isDouble() || !(std::fabs(number.toDouble()) <= limit)) {
            return std::nullopt;
        }
        part[i] = static_cast<float>(number.toDouble());
    }
    return Vector(part[0], part[1], part[2]);
}

std::optional<Vector> direction(const QJsonValue& value)
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

std::optional<HandData> hand(const QJsonObject& object)
{
    const auto id = wholeNumber(object[QLatin1String("id")]);
    const auto position = vector(object[QLatin1String("palmPosition")], farthestPosition);
    const auto normal = direction(object[QLatin1String("palmNormal")]);
    const auto fingers = direction(object[QLatin1String("direction")]);
    if (!id || !position || !normal || !fingers) {
        return std::nullopt;
    }
    HandData data;
    data.id = *id;
    data.palmPosition = *position;
    data.palmNormal = *normal;
    data.direction = *fingers;
    data.palmVelocity =
        vector(object[QLatin1String("palmVelocity")], fastestSpeed).value_or(Vector());
    return data;
}

// With what is left of a hand that was dropped, its fingers go as well.
void readHands(const QJsonArray& list, FrameData& frame, std::set<std::int64_t>& dropped)
{
    std::set<std::int64_t> known;
    for (const QJsonValue value : list) {
        if (frame.hands.size() == mostHands) {
            return;
        }
        const QJsonObject object = value.toObject();
        if (const auto data = hand(object)) {
            if (known.insert(data->id).second) {
                frame.hands.push_back(*data);
            }
        } else if (const auto id = wholeNumber(object[QLatin1String("id")])) {
            dropped.insert(*id);
        }
    }
}

void readPointables(const QJsonArray& list, FrameData& frame,
                    const std::set<std::int64_t>& droppedHands)
{
    for (const QJsonValue value : list) {
        if (frame.pointables.size() == mostPointables) {
            return;
        }
        const QJsonObject object = value.toObject();
        const auto id = wholeNumber(object[QLatin1String("id")]);
        const auto handId = wholeNumber(object[QLatin1String("handId")]);
        const auto tip = vector(object[QLatin1String("tipPosition")], farthestPosition);
        if (!id || !tip || (handId && droppedHands.count(*handId))) {
            continue;
        }
        PointableData data;
        data.id = *id;
        data.handId = handId.value_or(-1);
        data.tipPosition = *tip;
        data.direction = direction(object[QLatin1String("direction")]).value_or(Vector());
        data.extended = object[QLatin1String("extended")].toBool(true);
        const auto finger = wholeNumber(object[QLatin1String("type")]);
        const bool isTool = object[QLatin1String("tool")].toBool(false);
        data.finger =
            finger && !isTool && *finger >= 0 && *finger <= 4 ? static_cast<int>(*finger) : -1;
        frame.pointables.push_back(data);
    }
}

Gesture::Type gestureType(const QString& name)
{
    if (name == QLatin1String("circle")) {
        return Gesture::TYPE_CIRCLE;
    }
    if (name == QLatin1String("screenTap")) {
        return Gesture::TYPE_SCREEN_TAP;
    }
    if (name == QLatin1String("swipe")) {
        return Gesture::TYPE_SWIPE;
    }
    if (name == QLatin1String("keyTap")) {
        return Gesture::TYPE_KEY_TAP;
    }
    return Gesture::TYPE_INVALID;
}

Gesture::State gestureState(const QString& name)
{
    if (name == QLatin1String("start")) {
        return Gesture::STATE_START;
    }
    if (name == QLatin1String("update")) {
        return Gesture::STATE_UPDATE;
    }
    if (name == QLatin1String("stop")) {
        return Gesture::STATE_STOP;
    }
    return Gesture::STATE_INVALID;
}

Pointable pointableOf(const QJsonObject& gesture, const FrameData& frame)
{
    const auto id = wholeNumber(gesture[QLatin1String("pointableIds")].toArray().at(0));
    const auto found =
        std::find_if(frame.pointables.begin(), frame.pointables.end(),
                     [&](const PointableData& pointable) { return id && pointable.id == *id; });
    return found == frame.pointables.end() ? Pointable() : Pointable(found->id, found->direction);
}

void readGestures(const QJsonArray& list, FrameData& frame)
{
    for (const QJsonValue value : list) {
        if (frame.gestures.size() == mostGestures) {
            return;
        }
        const QJsonObject object = value.toObject();
        const auto id = wholeNumber(object[QLatin1String("id")]);
        GestureData data;
        data.type = gestureType(object[QLatin1String("type")].toString());
        data.state = gestureState(object[QLatin1String("state")].toString());
        if (!id || data.type == Gesture::TYPE_INVALID || data.state == Gesture::STATE_INVALID) {
            continue;
        }
        data.id = *id;
        const double progress = object[QLatin1String("progress")].toDouble(0.0);
        data.progress =
            progress >= 0.0 && progress <= mostTurns ? static_cast<float>(progress) : 0.0f;
        data.normal = direction(object[QLatin1String("normal")]).value_or(Vector());
        data.pointable = pointableOf(object, frame);
        frame.gestures.push_back(data);
    }
}

Message helloMessage(const QJsonObject& object)
{
    Message message;
    message.kind = Message::Kind::Hello;
    const auto version = wholeNumber(object[QLatin1String("version")]);
    message.version = version && std::abs(*version) <= 1000 ? static_cast<int>(*version) : 0;
    message.serviceVersion = object[QLatin1String("serviceVersion")].toString().toStdString();
    return message;
}

Message frameMessage(const QJsonObject& object)
{
    Message message;
    const auto id = wholeNumber(object[QLatin1String("id")]);
    const auto timestamp = wholeNumber(object[QLatin1String("timestamp")]);
    const QJsonValue hands = object[QLatin1String("hands")];
    if (!id || !timestamp || !hands.isArray()) {
        return message;
    }
    message.kind = Message::Kind::Frame;
    message.frame.id = *id;
    message.frame.timestamp = *timestamp;
    std::set<std::int64_t> droppedHands;
    readHands(hands.toArray(), message.frame, droppedHands);
    readPointables(object[QLatin1String("pointables")].toArray(), message.frame, droppedHands);
    readGestures(object[QLatin1String("gestures")].toArray(), message.frame);
    return message;
}

}  // namespace

Message parseMessage(const QByteArray& text)
{
    if (text.size() > longestMessage || isNestedTooDeep(text)) {
        return Message();
    }
    const QJsonDocument document = QJsonDocument::fromJson(text);
    if (!document.isObject()) {
        return Message();
    }
    const QJsonObject object = document.object();
    if (object.contains(QLatin1String("event"))) {
        Message message;
        message.kind = Message::Kind::Event;
        return message;
    }
    if (object.contains(QLatin1String("version"))) {
        return helloMessage(object);
    }
    return frameMessage(object);
}

}  // namespace Leap

#include "FrameWriter.h"

#include "HandModel.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QQuaternion>

#include <cmath>

namespace {

constexpr double palmWidth = 84.0;
constexpr double armWidth = 58.0;
constexpr float forearm = 260.0f;
constexpr float wristBehindPalm = 62.0f;
constexpr double fingerWidth = 18.0;

// Six digits, as the service writes them.
double digits(double value)
{
    if (value == 0.0 || !std::isfinite(value))
        return 0.0;
    const double scale = std::pow(10.0, 5 - std::floor(std::log10(std::fabs(value))));
    return std::round(value * scale) / scale;
}

QJsonArray array(const QVector3D& vector)
{
    return {digits(vector.x()), digits(vector.y()), digits(vector.z())};
}

QJsonArray identity()
{
    return {array({1, 0, 0}), array({0, 1, 0}), array({0, 0, 1})};
}

// Rows x, y, z; the last points back along the bone. A left hand's is mirrored.
QJsonArray basis(const PlayedHand& hand)
{
    const QVector3D y = -hand.normal();
    const QVector3D z = -hand.direction();
    const QVector3D x = QVector3D::crossProduct(y, z) * (hand.isLeft ? -1.0f : 1.0f);
    return {array(x), array(y), array(z)};
}

QJsonObject handObject(const PlayedHand& hand, qint64 timestamp)
{
    const QVector3D wrist = hand.palm - hand.direction() * wristBehindPalm;
    return {
        {"armBasis", basis(hand)},
        {"armWidth", armWidth},
        {"confidence", 1},
        {"direction", array(hand.direction())},
        {"elbow", array(wrist - hand.direction() * forearm)},
        {"grabStrength", 0},
        {"id", hand.id},
        {"palmNormal", array(hand.normal())},
        {"palmPosition", array(hand.palm)},
        {"palmVelocity", array({0, 0, 0})},
        {"palmWidth", palmWidth},
        {"pinchStrength", 0},
        {"r", identity()},
        {"s", 1},
        {"sphereCenter", array(hand.palm + hand.normal() * 80.0f)},
        {"sphereRadius", 80},
        {"stabilizedPalmPosition", array(hand.palm)},
        {"t", array(hand.palm)},
        {"timeVisible", digits(double(timestamp) * 1e-6)},
        {"type", hand.isLeft ? "left" : "right"},
        {"wrist", array(wrist)},
    };
}

QJsonObject pointableObject(const PlayedHand& hand, int finger, qint64 timestamp)
{
    const auto joints = fingerJoints(hand, finger);
    const QVector3D direction = (joints[3] - joints[2]).normalized();
    const QVector3D tip = joints[4] - direction * 4.0f;
    return {
        {"bases", QJsonArray{basis(hand), basis(hand), basis(hand), basis(hand)}},
        {"btipPosition", array(joints[4])},
        {"carpPosition", array(finger == 0 ? joints[1] : joints[0])},
        {"dipPosition", array(joints[3])},
        {"direction", array(direction)},
        {"extended", true},
        {"handId", hand.id},
        {"id", pointableId(hand.id, finger)},
        {"length", digits(double((joints[4] - joints[1]).length()))},
        {"mcpPosition", array(joints[1])},
        {"pipPosition", array(joints[2])},
        {"stabilizedTipPosition", array(tip)},
        {"timeVisible", digits(double(timestamp) * 1e-6)},
        {"tipPosition", array(tip)},
        {"tipVelocity", array({0, 0, 0})},
        {"tool", false},
        {"touchDistance", 0.333},
        {"touchZone", "hovering"},
        {"type", finger},
        {"width", fingerWidth},
    };
}

QJsonObject gestureObject(const PlayedGesture& gesture)
{
    QJsonObject object{
        {"duration", gesture.duration},
        {"handIds", QJsonArray{gesture.handId}},
        {"id", gesture.id},
        {"pointableIds", QJsonArray{pointableId(gesture.handId, indexFinger)}},
        {"progress", digits(gesture.progress)},
        {"state", gesture.state},
    };
    if (gesture.type == PlayedGesture::Type::Circle) {
        object["type"] = "circle";
        object["center"] = array(gesture.place);
        object["normal"] = array(gesture.normal);
        object["radius"] = digits(gesture.radius);
    } else {
        object["type"] = "screenTap";
        object["position"] = array(gesture.place);
        object["direction"] = array(gesture.normal);
    }
    return object;
}

QByteArray text(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

}  // namespace

int pointableId(int handId, int finger)
{
    return 10 * handId + finger;
}

QByteArray helloMessage(bool recognizesGestures)
{
    return recognizesGestures ? "{\"serviceVersion\":\"2.3.1+0\",\"version\":6}"
                              : "{\"version\":6}";
}

QByteArray deviceMessage(bool attached)
{
    const QJsonObject state{{"attached", attached},
                            {"id", "played-hand"},
                            {"streaming", attached},
                            {"type", "peripheral"}};
    return text({{"event", QJsonObject{{"state", state}, {"type", "deviceEvent"}}}});
}

QByteArray frameMessage(const PlayedFrame& frame)
{
    QJsonArray hands;
    QJsonArray pointables;
    for (const PlayedHand& hand : frame.hands) {
        hands.append(handObject(hand, frame.timestamp));
        for (int finger = 0; finger < fingerCount; ++finger)
            pointables.append(pointableObject(hand, finger, frame.timestamp));
    }
    QJsonObject object{
        {"currentFrameRate", digits(frame.frameRate)},
        {"devices", QJsonArray()},
        {"hands", hands},
        {"id", frame.id},
        {"interactionBox", QJsonObject{{"center", array({0, 200, 0})},
                                       {"size", array({235.247f, 235.247f, 147.751f})}}},
        {"pointables", pointables},
        {"r", identity()},
        {"s", 1},
        {"t", array({0, 0, 0})},
        {"timestamp", frame.timestamp},
    };
    if (frame.tellsGestures) {
        QJsonArray gestures;
        for (const PlayedGesture& gesture : frame.gestures)
            gestures.append(gestureObject(gesture));
        object["gestures"] = gestures;
    }
    return text(object);
}

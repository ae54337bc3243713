#include "SensedHand.h"

#include "PlayedHand.h"
#include "platform/leap/FrameData.h"
#include "platform/leap/Session.h"

#include <cmath>

namespace {

Leap::Vector toLeap(const QVector3D& vector)
{
    return {vector.x(), vector.y(), vector.z()};
}

/// Passes one frame on and ends the session.
class OneFrame : public Leap::Listener
{
public:
    OneFrame(Leap::Listener& game, Leap::Session& frameSession)
        : listener(game), session(frameSession)
    {
    }

    void onFrame(const Leap::Controller& controller) override
    {
        listener.onFrame(controller);
        session.stop();
    }

private:
    Leap::Listener& listener;
    Leap::Session& session;
};

}  // namespace

void showHand(Leap::Listener& listener, const osg::Vec3d& up, long long frameId)
{
    PlayedHand hand;
    hand.roll = static_cast<float>(-std::asin(up.x()));
    hand.pitch = static_cast<float>(-std::asin(up.y() / std::cos(double(hand.roll))));

    Leap::HandData seen;
    seen.id = hand.id;
    seen.palmPosition = toLeap(hand.palm);
    seen.palmNormal = toLeap(hand.normal());
    seen.direction = toLeap(hand.direction());
    Leap::FrameData frame;
    frame.id = frameId;
    frame.hands.push_back(seen);

    const auto session = std::make_shared<Leap::Session>();
    OneFrame passing(listener, *session);
    session->addListener(passing);
    session->publish(frame);
    session->run();
}

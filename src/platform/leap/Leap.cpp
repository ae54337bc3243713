#include "platform/leap/Leap.h"

#include "platform/leap/FrameData.h"

#include <cmath>
#include <utility>

namespace Leap {

namespace {

const HandData noHand;
const GestureData noGesture;

template <typename List>
bool holds(const List& list, int index)
{
    return index >= 0 && std::size_t(index) < list.size();
}

}  // namespace

float Vector::angleTo(const Vector& other) const
{
    const float product = magnitudeSquared() * other.magnitudeSquared();
    if (!(product > 0.0f))
        return 0.0f;
    const float cosine = dot(other) / std::sqrt(product);
    return std::acos(std::fmax(-1.0f, std::fmin(1.0f, cosine)));
}

Pointable::Pointable(std::int64_t id, const Vector& direction)
    : id_(id), direction_(direction), valid(true)
{
}

Hand::Hand(std::shared_ptr<const FrameData> frame_, std::size_t index_)
    : frame(std::move(frame_)), index(index_)
{
}

const HandData& Hand::data() const
{
    return frame ? frame->hands[index] : noHand;
}

std::int64_t Hand::id() const
{
    return data().id;
}

Vector Hand::palmPosition() const
{
    return data().palmPosition;
}

Vector Hand::palmNormal() const
{
    return data().palmNormal;
}

Vector Hand::direction() const
{
    return data().direction;
}

HandList::HandList(std::shared_ptr<const FrameData> frame_) : frame(std::move(frame_)) {}

int HandList::count() const
{
    return frame ? int(frame->hands.size()) : 0;
}

Hand HandList::operator[](int index) const
{
    if (!frame || !holds(frame->hands, index))
        return Hand();
    return Hand(frame, std::size_t(index));
}

Gesture::Gesture(std::shared_ptr<const FrameData> frame_, std::size_t index_)
    : frame(std::move(frame_)), index(index_)
{
}

const GestureData& Gesture::data() const
{
    return frame ? frame->gestures[index] : noGesture;
}

Gesture::Type Gesture::type() const
{
    return data().type;
}

Gesture::State Gesture::state() const
{
    return data().state;
}

std::int64_t Gesture::id() const
{
    return data().id;
}

CircleGesture::CircleGesture(const Gesture& gesture)
    : Gesture(gesture.type() == TYPE_CIRCLE ? gesture : Gesture())
{
}

float CircleGesture::progress() const
{
    return data().progress;
}

Vector CircleGesture::normal() const
{
    return data().normal;
}

Pointable CircleGesture::pointable() const
{
    return data().pointable;
}

GestureList::GestureList(std::shared_ptr<const FrameData> frame_) : frame(std::move(frame_)) {}

int GestureList::count() const
{
    return frame ? int(frame->gestures.size()) : 0;
}

Gesture GestureList::operator[](int index) const
{
    if (!frame || !holds(frame->gestures, index))
        return Gesture();
    return Gesture(frame, std::size_t(index));
}

Frame::Frame(std::shared_ptr<const FrameData> data_) : data(std::move(data_)) {}

std::int64_t Frame::id() const
{
    return data ? data->id : -1;
}

}  // namespace Leap

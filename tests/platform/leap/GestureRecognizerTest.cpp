#include "platform/leap/GestureRecognizer.h"

#include "HandPlayer.h"
#include "platform/leap/MessageParser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <vector>

using Leap::FrameData;
using Leap::Gesture;
using Leap::GestureData;
using Leap::Vector;

namespace {

constexpr double pi = 3.141592653589793;
const std::vector<int> sensorRates{60, 110, 200};

// One right hand whose index fingertip goes where the function of time (seconds) says, relative to
// its place before the hand. `moves` may change the rest of the hand.
class FingerTrack
{
public:
    using Path = std::function<Vector(double)>;
    using Change = std::function<void(double, FrameData&)>;

    explicit FingerTrack(int rate_) : rate(rate_) {}

    std::vector<GestureData> follow(double seconds, const Path& path,
                                    const Change& change = nullptr)
    {
        std::vector<GestureData> seen;
        const int count = int(seconds * rate);
        for (int i = 0; i < count; ++i) {
            ++frames;
            const double time = double(i) / rate;
            if (dropped && frames % dropped == 0)
                continue;
            FrameData frame = frameWithTip(path(time));
            if (change)
                change(time, frame);
            recognizer.recognize(frame);
            seen.insert(seen.end(), frame.gestures.begin(), frame.gestures.end());
        }
        return seen;
    }

    int dropped = 0;      // every so manieth frame never comes
    double noise = 0.05;  // mm

private:
    FrameData frameWithTip(const Vector& offset)
    {
        std::normal_distribution<float> jitter(0.0f, float(noise));
        FrameData frame;
        frame.id = frames;
        frame.timestamp = std::int64_t(frames * 1e6 / rate);
        Leap::HandData hand;
        hand.id = 4;
        hand.palmPosition = Vector(0, 200, 0);
        hand.palmNormal = Vector(0, -1, 0);
        hand.direction = Vector(0, 0, -1);
        frame.hands.push_back(hand);
        Leap::PointableData index;
        index.id = 41;
        index.handId = 4;
        index.finger = 1;
        index.direction = Vector(0, 0, -1);
        index.tipPosition = Vector(offset.x - 20 + jitter(random), offset.y + 200 + jitter(random),
                                   offset.z - 100 + jitter(random));
        frame.pointables.push_back(index);
        return frame;
    }

    int rate;
    std::int64_t frames = 0;
    std::mt19937 random{7};
    Leap::GestureRecognizer recognizer;
};

Vector still(double)
{
    return Vector();
}

// In the plane of the screen, from its top, at two turns a second.
FingerTrack::Path circle(double radius, double turns, bool clockwise, double turnsPerSecond = 2.0)
{
    return [=](double time) {
        const double angle = 2.0 * pi * std::min(time * turnsPerSecond, turns);
        const double sense = clockwise ? 1.0 : -1.0;
        return Vector(float(sense * radius * std::sin(angle)),
                      float(radius * (std::cos(angle) - 1.0)), 0.0f);
    };
}

FingerTrack::Path poke(double depth, double oneWay)
{
    return [=](double time) {
        const double share = 1.0 - std::fabs(std::min(time / oneWay, 2.0) - 1.0);
        return Vector(0.0f, 0.0f, float(-depth * share));
    };
}

int count(const std::vector<GestureData>& gestures, Gesture::Type type, Gesture::State state)
{
    return int(std::count_if(
        gestures.begin(), gestures.end(),
        [=](const GestureData& gesture) {
            return gesture.type == type && gesture.state == state;
        }));
}

int taps(const std::vector<GestureData>& gestures)
{
    return count(gestures, Gesture::TYPE_SCREEN_TAP, Gesture::STATE_STOP);
}

int circleEnds(const std::vector<GestureData>& gestures)
{
    return count(gestures, Gesture::TYPE_CIRCLE, Gesture::STATE_STOP);
}

}  // namespace

TEST(GestureRecognizer, ReportsACircleFromThreeQuartersOfATurnToItsEnd)
{
    for (const int rate : sensorRates) {
        for (const int dropped : {0, 3, 10}) {
            for (const bool clockwise : {true, false}) {
                SCOPED_TRACE(testing::Message() << rate << " Hz, drop " << dropped
                                                << (clockwise ? " clockwise" : " back"));
                FingerTrack finger(rate);
                finger.dropped = dropped;
                finger.follow(0.3, still);
                const auto seen = finger.follow(1.6, circle(25.0, 2.0, clockwise));
                ASSERT_EQ(count(seen, Gesture::TYPE_CIRCLE, Gesture::STATE_START), 1);
                ASSERT_EQ(circleEnds(seen), 1);
                EXPECT_EQ(taps(seen), 0);
                EXPECT_EQ(seen.front().state, Gesture::STATE_START);
                EXPECT_NEAR(seen.front().progress, 0.75, 0.15);
                EXPECT_EQ(seen.back().state, Gesture::STATE_STOP);
                EXPECT_NEAR(seen.back().progress, 2.0, 0.2);
                EXPECT_EQ(seen.back().id, seen.front().id);
                EXPECT_NEAR(seen.back().normal.z, clockwise ? -1.0 : 1.0, 0.05);
                EXPECT_EQ(seen.back().pointable.id(), 41);
                const bool readAsClockwise =
                    seen.back().pointable.direction().angleTo(seen.back().normal) <= pi / 2;
                EXPECT_EQ(readAsClockwise, clockwise);
            }
        }
    }
}

TEST(GestureRecognizer, TellsFromTheFirstReportHowFarTheCircleHasCome)
{
    constexpr double turnsPerSecond = 2.0;
    for (const double radius : {25.0, 60.0}) {
        for (const double begin : {0.0, 0.125, 0.25, 0.375}) {
            SCOPED_TRACE(testing::Message() << radius << " mm from " << begin << " of a turn");
            FingerTrack finger(200);
            finger.noise = 0.0;
            const auto turning = circle(radius, 10.0, true, turnsPerSecond);
            const auto path = [&](double time) {
                return turning(time + begin / turnsPerSecond);
            };
            std::vector<double> times;
            finger.follow(
                0.3, [&](double) { return path(0.0); });
            const auto seen =
                finger.follow(0.44, path, [&](double time, FrameData&) { times.push_back(time); });
            ASSERT_FALSE(seen.empty());
            const double turns = times[times.size() - seen.size()] * turnsPerSecond;
            EXPECT_NEAR(seen.front().progress, turns, 0.003);
        }
    }
}

TEST(GestureRecognizer, GivesEveryCircleANumberOfItsOwn)
{
    FingerTrack finger(110);
    std::vector<int> numbers;
    for (int i = 0; i < 3; ++i) {
        finger.follow(0.3, still);
        const auto seen = finger.follow(1.6, circle(25.0, 2.0, true));
        ASSERT_EQ(circleEnds(seen), 1);
        for (const GestureData& gesture : seen)
            EXPECT_EQ(gesture.id, seen.front().id);
        EXPECT_EQ(std::count(numbers.begin(), numbers.end(), seen.front().id), 0);
        numbers.push_back(seen.front().id);
    }
}

TEST(GestureRecognizer, FindsCirclesFromTheSmallestToTheLargest)
{
    for (const double radius : {7.0, 15.0, 40.0, 80.0, 110.0}) {
        SCOPED_TRACE(radius);
        FingerTrack finger(110);
        const auto seen = finger.follow(1.6, circle(radius, 1.5, true, 1.5));
        EXPECT_EQ(circleEnds(seen), 1);
        EXPECT_NEAR(seen.empty() ? 0.0 : seen.back().progress, 1.5, 0.2);
    }
    for (const double radius : {3.0, 150.0}) {
        SCOPED_TRACE(radius);
        FingerTrack finger(110);
        EXPECT_TRUE(finger.follow(1.6, circle(radius, 1.5, true, 1.5)).empty());
    }
}

TEST(GestureRecognizer, TakesLessThanThreeQuartersOfATurnForNothing)
{
    FingerTrack finger(110);
    finger.follow(0.3, still);
    EXPECT_TRUE(finger.follow(1.0, circle(30.0, 0.6, true)).empty());
}

TEST(GestureRecognizer, EndsACircleWhenTheFingerLeavesItRestsOrTurnsBack)
{
    const auto turning = circle(30.0, 10.0, true);
    const std::vector<std::pair<const char*, FingerTrack::Path>> ends{
        {"leaves",
         [&](double t) {
             Vector tip = turning(std::min(t, 0.75));
             tip.z = float(std::max(t - 0.75, 0.0) * 900.0);
             return tip;
         }},
        {"rests",
         [&](double t) {
             return turning(std::min(t, 0.75));
         }},
        {"turns back",
         [&](double t) {
             return turning(t < 0.75 ? t : 1.5 - t);
         }},
    };
    for (const auto& [name, path] : ends) {
        SCOPED_TRACE(name);
        FingerTrack finger(110);
        const auto seen = finger.follow(1.1, path);
        ASSERT_GE(circleEnds(seen), 1);
        const auto end = std::find_if(seen.begin(), seen.end(), [](const GestureData& gesture) {
            return gesture.state == Gesture::STATE_STOP;
        });
        EXPECT_NEAR(end->progress, 1.5, 0.25);
    }
}

TEST(GestureRecognizer, EndsACircleWithTheLastGoodValuesWhenTheFingerIsLost)
{
    const std::vector<std::pair<const char*, FingerTrack::Change>> losses{
        {"no hand",
         [](double, FrameData& frame) {
             frame = FrameData(frame);
             frame.hands.clear();
         }},
        {"no finger",
         [](double, FrameData& frame) {
             frame.pointables.clear();
         }},
        {"bent",
         [](double, FrameData& frame) {
             frame.pointables[0].extended = false;
         }},
        {"another hand", [](double, FrameData& frame) {
             frame.hands[0].id = frame.pointables[0].handId = 9;
         }}};
    for (const auto& [name, loss] : losses) {
        SCOPED_TRACE(name);
        FingerTrack finger(110);
        finger.follow(0.6, circle(30.0, 10.0, true));
        const auto seen = finger.follow(0.05, still, loss);
        ASSERT_EQ(circleEnds(seen), 1);
        EXPECT_NEAR(seen.front().progress, 1.2, 0.1);
        EXPECT_EQ(seen.front().pointable.id(), 41);
    }
}

TEST(GestureRecognizer, ReportsATapOnceOnTheWayBack)
{
    for (const int rate : sensorRates) {
        for (const int dropped : {0, 4}) {
            for (const double oneWay : {0.06, 0.1, 0.15}) {
                SCOPED_TRACE(testing::Message()
                             << rate << " Hz, drop " << dropped << ", " << oneWay);
                FingerTrack finger(rate);
                finger.dropped = dropped;
                finger.follow(0.2, still);
                const auto seen = finger.follow(0.6, poke(30.0, oneWay));
                EXPECT_EQ(taps(seen), 1);
                EXPECT_EQ(seen.size(), 1u);
                EXPECT_EQ(seen.empty() ? -1 : seen[0].pointable.id(), 41);
            }
        }
    }
}

TEST(GestureRecognizer, ReportsAShortTapThatIsQuick)
{
    // So short that the finger's speed counts: over the time that is looked back on it is slow.
    for (const int rate : sensorRates) {
        SCOPED_TRACE(testing::Message() << rate << " Hz");
        FingerTrack finger(rate);
        finger.follow(0.2, still);
        EXPECT_EQ(taps(finger.follow(0.6, poke(11.5, 0.05))), 1);
    }
}

TEST(GestureRecognizer, ReportsATapByTheWayThatTheFingerCame)
{
    // Quick at first, when it has not come far enough; far enough when it is no longer quick.
    for (const int rate : sensorRates) {
        SCOPED_TRACE(testing::Message() << rate << " Hz");
        FingerTrack finger(rate);
        finger.follow(0.2, still);
        const auto seen = finger.follow(0.6, [](double t) {
            const double forward = t < 0.03   ? 270.0 * t
                                   : t < 0.09 ? 8.1 + 100.0 * (t - 0.03)
                                              : 14.1 - 100.0 * (t - 0.09);
            return Vector(0.0f, 0.0f, float(-std::max(forward, 0.0)));
        });
        EXPECT_EQ(taps(seen), 1);
    }
}

TEST(GestureRecognizer, ReportsATapThatSlowsDownBeforeItTurns)
{
    for (const int rate : sensorRates) {
        SCOPED_TRACE(testing::Message() << rate << " Hz");
        FingerTrack finger(rate);
        finger.follow(0.2, still);
        const auto seen = finger.follow(0.6, [](double t) {
            const double forward = t < 0.08   ? 300.0 * t
                                   : t < 0.26 ? 24.0 + 20.0 * (t - 0.08)
                                              : 27.6 - 300.0 * (t - 0.26);
            return Vector(0.0f, 0.0f, float(-std::max(forward, 0.0)));
        });
        EXPECT_EQ(taps(seen), 1);
    }
}

TEST(GestureRecognizer, TakesNoHalfTapForATap)
{
    const std::vector<std::pair<const char*, FingerTrack::Path>> others{
        {"shallow", poke(6.0, 0.08)},
        {"slow", poke(20.0, 0.6)},
        {"stays forward",
         [](double t) {
             return poke(30.0, 0.1)(std::min(t, 0.1));
         }},
        {"sideways",
         [](double t) {
             const Vector tip = poke(20.0, 0.1)(t);
             return Vector(tip.z * 1.5f, 0.0f, tip.z);
         }},
        {"backwards",
         [](double t) {
             Vector tip = poke(30.0, 0.1)(t);
             tip.z = -tip.z;
             return tip;
         }},
    };
    for (const auto& [name, path] : others) {
        SCOPED_TRACE(name);
        FingerTrack finger(110);
        finger.follow(0.2, still);
        EXPECT_EQ(taps(finger.follow(1.5, path)), 0);
    }
}

TEST(GestureRecognizer, WantsARestBeforeATapAndTimeBetweenTwo)
{
    FingerTrack restless(110);
    const auto pokes = [](double t) {
        return poke(30.0, 0.1)(std::fmod(t, 0.2));
    };
    EXPECT_EQ(taps(restless.follow(2.0, pokes)), 0) << "no rest between the pokes";

    FingerTrack quick(110);
    quick.follow(0.2, still);
    const auto withRests = [](double t) {
        return poke(30.0, 0.06)(std::fmod(t, 0.24));
    };
    EXPECT_LE(taps(quick.follow(0.48, withRests)), 1) << "two taps within the dead time";
    quick.follow(0.4, still);
    EXPECT_EQ(taps(quick.follow(0.4, poke(30.0, 0.1))), 1) << "after it, the next one counts";
}

TEST(GestureRecognizer, TakesNoPushOfTheWholeHandForATap)
{
    FingerTrack finger(110);
    finger.follow(0.2, still);
    const auto seen = finger.follow(0.6, poke(30.0, 0.1), [](double time, FrameData& frame) {
        frame.hands[0].palmPosition.z += poke(30.0, 0.1)(time).z;
    });
    EXPECT_EQ(taps(seen), 0);
}

TEST(GestureRecognizer, TakesAFingerThatPointsAsideForNoTap)
{
    FingerTrack finger(110);
    finger.follow(0.2, still);
    const auto seen = finger.follow(0.6, poke(30.0, 0.1), [](double, FrameData& frame) {
        frame.pointables[0].direction = Vector(0.9f, 0.0f, -0.436f);
    });
    EXPECT_EQ(taps(seen), 0);
}

TEST(GestureRecognizer, SeesNothingInABentFinger)
{
    const auto bends = [](double, FrameData& frame) {
        frame.pointables[0].extended = false;
    };
    FingerTrack finger(110);
    finger.follow(0.2, still, bends);
    EXPECT_TRUE(finger.follow(0.6, poke(30.0, 0.1), bends).empty());
    EXPECT_TRUE(finger.follow(0.6, circle(30.0, 1.0, true), bends).empty());
}

TEST(GestureRecognizer, SeesNothingInAFlatHandThatSteers)
{
    for (const int rate : sensorRates) {
        SCOPED_TRACE(rate);
        Leap::GestureRecognizer recognizer;
        HandPlayer player(rate);
        player.hands = {PlayedHand()};
        std::mt19937 random(3);
        std::normal_distribution<float> push(0.0f, 1.0f);
        int gestures = 0;
        // Twenty seconds of a player's tilting: smooth, random, up to about half a radian.
        float pitch = 0.0f;
        float roll = 0.0f;
        for (int i = 0; i < 20 * rate; ++i) {
            const float step = 1.0f / float(rate);
            pitch += step * (-1.0f * pitch) + std::sqrt(step) * 0.35f * push(random);
            roll += step * (-1.0f * roll) + std::sqrt(step) * 0.35f * push(random);
            PlayedHand& hand = player.hands[0];
            hand.pitch += (pitch - hand.pitch) * std::min(1.0f, 8.0f * step);
            hand.roll += (roll - hand.roll) * std::min(1.0f, 8.0f * step);
            FrameData frame =
                Leap::parseMessage(frameMessage(player.nextFrame()).toStdString()).frame;
            recognizer.recognize(frame);
            gestures += int(frame.gestures.size());
        }
        EXPECT_EQ(gestures, 0);
    }
}

TEST(GestureRecognizer, KeepsGoingByTheServicesClockAlone)
{
    FingerTrack finger(110);
    finger.follow(0.2, still);
    // The clock stands: the same frame time over and over must neither move nor divide by zero.
    const auto seen =
        finger.follow(0.5, poke(30.0, 0.1), [](double, FrameData& frame) { frame.timestamp = 1; });
    EXPECT_TRUE(seen.empty());
}

TEST(GestureRecognizer, ForgetsTheMovementAfterAGap)
{
    FingerTrack finger(110);
    finger.follow(0.6, circle(30.0, 10.0, true));
    const auto seen = finger.follow(0.02, circle(30.0, 10.0, true),
                                    [](double, FrameData& frame) { frame.timestamp += 500000; });
    EXPECT_EQ(circleEnds(seen), 1);
}

// SPDX-License-Identifier: Apache-2.0
#include "gps/track.h"

#include <algorithm>

namespace quarlin::sim {
namespace {

constexpr double kStep = 0.1;            // seconds
constexpr double kAcceleration = 2.5;    // metres per second squared, for both speeding up and braking
constexpr double kTurnRate = 30.0;       // degrees per second
constexpr double kCornerSpeed = 5.0;     // metres per second; its turning circle is smaller than the reach
constexpr double kWaypointReach = 15.0;  // metres
constexpr double kSharpTurn = 30.0;      // degrees
constexpr double kHillLength = 400.0;    // metres from one hill to the next, over two pi
constexpr double kHillHeight = 3.0;      // metres

double Towards(double value, double goal, double most) {
    return value + std::clamp(goal - value, -most, most);
}

}  // namespace

Track::Track(TrackSettings settings) : settings_(std::move(settings)) {
    motion_.position = settings_.start;
    motion_.speed = settings_.speed;
    motion_.course = WrapCourse(settings_.course);
    motion_.altitude = settings_.altitude;
    if (!settings_.waypoints.empty()) {
        motion_.position = settings_.waypoints.front();
        motion_.speed = 0;
        arrived_ = settings_.waypoints.size() < 2;
        if (!arrived_) {
            motion_.course = LegBetween(settings_.waypoints[0], settings_.waypoints[1]).course;
        }
    }
}

Motion Track::At(double time) {
    while (static_cast<double>(steps_ + 1) * kStep <= time + 1e-9) {
        Step();
    }
    return motion_;
}

void Track::Step() {
    const Aim aim = settings_.waypoints.empty() ? AimOfTurns() : AimOfWaypoints();
    motion_.speed = Towards(motion_.speed, aim.speed, kAcceleration * kStep);
    const double turn = std::clamp(CourseDifference(motion_.course, aim.course), -kTurnRate * kStep, kTurnRate * kStep);
    motion_.course = WrapCourse(motion_.course + turn);
    const double metres = motion_.speed * kStep;
    const double heading = motion_.course * kDegrees;
    motion_.position = Offset(motion_.position, metres * std::cos(heading), metres * std::sin(heading));
    travelled_ += metres;
    motion_.altitude = settings_.altitude + kHillHeight * std::sin(travelled_ / kHillLength);
    ++steps_;
}

Track::Aim Track::AimOfTurns() const {
    Aim aim{settings_.course, settings_.speed};
    const double now = static_cast<double>(steps_) * kStep;
    for (const Turn& turn : settings_.turns) {
        if (turn.at > now + 1e-9) {
            break;
        }
        aim.course = turn.course.value_or(aim.course);
        aim.speed = turn.speed.value_or(aim.speed);
    }
    return aim;
}

Track::Aim Track::AimOfWaypoints() {
    if (arrived_) {
        return {motion_.course, 0};
    }
    Leg leg = LegBetween(motion_.position, settings_.waypoints[target_]);
    if (leg.metres < kWaypointReach) {
        if (!settings_.loop && target_ + 1 == settings_.waypoints.size()) {
            arrived_ = true;
            return {motion_.course, 0};
        }
        target_ = Following(target_);
        leg = LegBetween(motion_.position, settings_.waypoints[target_]);
    }
    const bool turning = std::abs(CourseDifference(motion_.course, leg.course)) > kSharpTurn;
    const double limit = turning ? kCornerSpeed : CornerSpeed(leg.metres);
    return {leg.course, std::min(settings_.speed, limit)};
}

// How fast the vehicle may be so that it still reaches the corner's own speed by braking.
double Track::CornerSpeed(double metresToCorner) const {
    const std::size_t after = Following(target_);
    const bool stops = !settings_.loop && target_ + 1 == settings_.waypoints.size();
    const double course = LegBetween(settings_.waypoints[target_], settings_.waypoints[after]).course;
    const bool corner = stops || std::abs(CourseDifference(motion_.course, course)) > kSharpTurn;
    if (!corner) {
        return settings_.speed;
    }
    const double room = std::max(metresToCorner - kWaypointReach, 0.0);
    return std::sqrt(kCornerSpeed * kCornerSpeed + 2 * kAcceleration * room);
}

}  // namespace quarlin::sim

// SPDX-License-Identifier: Apache-2.0
#include "core/threaded_device.h"

#include <limits>
#include <nlohmann/json.hpp>

namespace quarlin::sim {
namespace {

// In a run that does not wait, time without output (an unplugged cable, silence) still must not spin a processor.
constexpr std::chrono::milliseconds kIdle{1};

}  // namespace

ThreadedDevice::ThreadedDevice(Surroundings surroundings, std::unique_ptr<Behaviour> behaviour)
    : surroundings_(std::move(surroundings)),
      behaviour_(std::move(behaviour)),
      end_(surroundings_.duration.value_or(std::numeric_limits<double>::infinity())) {
}

ThreadedDevice::~ThreadedDevice() {
    Stop();
}

void ThreadedDevice::Start() {
    behaviour_->Begin();
    thread_ = std::thread([this] { Run(); });
}

void ThreadedDevice::Stop() {
    {
        const std::lock_guard hold(lock_);
        stopping_ = true;
    }
    called_.notify_all();
    if (thread_.joinable()) {
        thread_.join();
        behaviour_->End();
    }
}

Reply ThreadedDevice::Command(const Words& words) {
    Reply reply;
    const bool ran = OnThread([&] {
        try {
            reply.text = behaviour_->Command(words, Now());
            if (words.front() != "status") {
                surroundings_.log->Write(Now(), surroundings_.name, JoinWords(words));
            }
        } catch (const CommandError& error) {
            reply = {false, surroundings_.name + ": " + error.what()};
        }
    });
    return ran ? reply : Reply{false, surroundings_.name + ": the device does not run"};
}

nlohmann::ordered_json ThreadedDevice::Describe() {
    nlohmann::ordered_json state;
    OnThread([&] { state = behaviour_->Describe(Now()); });
    return state;
}

bool ThreadedDevice::OnThread(const std::function<void()>& function) {
    std::packaged_task<void()> task(function);
    std::future<void> done = task.get_future();
    {
        const std::lock_guard hold(lock_);
        if (stopping_ || !thread_.joinable()) {
            return false;
        }
        requests_.push_back(std::move(task));
    }
    called_.notify_all();
    done.get();
    return true;
}

void ThreadedDevice::Run() {
    Lock lock(lock_);
    try {
        RunUntilStopped(lock);
    } catch (const std::exception& error) {
        if (!lock.owns_lock()) {
            lock.lock();
        }
        surroundings_.log->Write(now_, surroundings_.name, std::string("the device has failed: ") + error.what());
        Finish(lock);
        while (!stopping_) {
            called_.wait(lock, [this] { return Called(); });
            Serve(lock);
        }
    }
    Serve(lock);  // nobody is left waiting for an answer
}

void ThreadedDevice::RunUntilStopped(Lock& lock) {
    const Pace& pace = surroundings_.pace;
    while (!stopping_) {
        if (!requests_.empty()) {
            Serve(lock);
        } else if (finished_) {
            called_.wait(lock, [this] { return Called(); });
        } else if (!pace.Waits() && behaviour_->HasOutput()) {
            PushOnce(lock);
        } else {
            const double next = NextMoment();
            const double target = std::min(next, end_);
            if (pace.Waits() && pace.SecondsAt(Pace::Clock::now()) < target) {
                if (behaviour_->HasOutput()) {
                    PushOnce(lock);
                } else if (target == std::numeric_limits<double>::infinity()) {
                    called_.wait(lock, [this] { return Called(); });
                } else {
                    called_.wait_until(lock, pace.MomentOf(target), [this] { return Called(); });
                }
            } else if (next >= end_) {
                now_ = end_;
                Finish(lock);
            } else {
                Advance(lock, next);
            }
        }
    }
}

void ThreadedDevice::Serve(Lock& lock) {
    while (!requests_.empty()) {
        std::packaged_task<void()> task = std::move(requests_.front());
        requests_.pop_front();
        lock.unlock();
        task();
        lock.lock();
    }
}

void ThreadedDevice::PushOnce(Lock& lock) {
    lock.unlock();
    behaviour_->Push();
    lock.lock();
}

void ThreadedDevice::Advance(Lock& lock, double next) {
    if (next == std::numeric_limits<double>::infinity()) {  // nothing waits and nothing is to come
        called_.wait(lock, [this] { return Called(); });
        return;
    }
    now_ = std::max(now_, next);
    lock.unlock();
    if (!RunDueEvent(next)) {
        behaviour_->Step(next);
    }
    const bool output = behaviour_->HasOutput();
    if (output) {
        behaviour_->Push();
    }
    lock.lock();
    if (!output && !surroundings_.pace.Waits()) {
        called_.wait_for(lock, kIdle, [this] { return Called(); });
    }
}

void ThreadedDevice::Finish(Lock& lock) {
    finished_ = true;
    lock.unlock();
    if (surroundings_.finished) {
        surroundings_.finished();
    }
    lock.lock();
}

bool ThreadedDevice::RunDueEvent(double next) {
    const auto& timeline = surroundings_.timeline;
    if (nextEvent_ == timeline.size() || timeline[nextEvent_].at > next) {
        return false;
    }
    const TimedCommand& event = timeline[nextEvent_++];
    try {
        behaviour_->Command(event.words, next);
        surroundings_.log->Write(next, surroundings_.name, JoinWords(event.words));
    } catch (const CommandError& error) {
        surroundings_.log->Write(next, surroundings_.name,
                                 "\"" + JoinWords(event.words) + "\" is refused: " + error.what());
    }
    return true;
}

double ThreadedDevice::NextMoment() const {
    const auto& timeline = surroundings_.timeline;
    const double step = behaviour_->NextStep();
    return nextEvent_ == timeline.size() ? step : std::min(step, timeline[nextEvent_].at);
}

// Between two steps time goes on, but not past the next one, which then would lie in the past.
double ThreadedDevice::Now() const {
    if (finished_ || !surroundings_.pace.Waits()) {
        return now_;
    }
    const double wall = surroundings_.pace.SecondsAt(Pace::Clock::now());
    return std::max(now_, std::min({wall, NextMoment(), end_}));
}

}  // namespace quarlin::sim

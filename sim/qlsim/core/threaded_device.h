// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <future>
#include <memory>
#include <mutex>
#include <thread>

#include "core/device.h"

namespace quarlin::sim {

// What a device does, without threads: a ThreadedDevice calls it from one thread at a time. Times are seconds of the
// simulation and never go back.
class Behaviour {
  public:
    virtual ~Behaviour() = default;

    // Throws DeviceError when the device cannot begin.
    virtual void Begin() = 0;
    virtual void End() = 0;
    // When it wants to do its next step; infinity for never.
    virtual double NextStep() const = 0;
    virtual void Step(double now) = 0;
    // Output that waits to be taken, and one try of at most a tenth of a second to hand it over.
    virtual bool HasOutput() const { return false; }
    virtual void Push() {}
    // Returns what to say. Throws CommandError to refuse.
    virtual std::string Command(const Words& words, double now) = 0;
    virtual nlohmann::ordered_json Describe(double now) = 0;
};

// A device with a thread of its own, which steps it through time, runs its timeline and serves its commands in between.
// With the pace that never waits, everything happens in the same order as otherwise, so that the bytes are the same.
class ThreadedDevice final : public Device {
  public:
    ThreadedDevice(Surroundings surroundings, std::unique_ptr<Behaviour> behaviour);
    ThreadedDevice(const ThreadedDevice&) = delete;
    ThreadedDevice& operator=(const ThreadedDevice&) = delete;
    ~ThreadedDevice() override;

    void Start() override;
    void Stop() override;
    bool Finished() const override { return finished_; }
    Reply Command(const Words& words) override;
    nlohmann::ordered_json Describe() override;

  private:
    using Lock = std::unique_lock<std::mutex>;

    void Run();
    void RunUntilStopped(Lock& lock);
    void Serve(Lock& lock);
    void PushOnce(Lock& lock);
    void Advance(Lock& lock, double next);
    void Finish(Lock& lock);
    bool RunDueEvent(double next);
    double NextMoment() const;
    double Now() const;
    bool Called() const { return stopping_ || !requests_.empty(); }
    // Runs a function on the device's thread and waits for it; false when the device does not run.
    bool OnThread(const std::function<void()>& function);

    Surroundings surroundings_;
    std::unique_ptr<Behaviour> behaviour_;
    double end_;
    double now_ = 0;
    std::size_t nextEvent_ = 0;
    std::atomic<bool> finished_ = false;

    std::mutex lock_;  // guards the two below; the behaviour is the thread's alone
    std::deque<std::packaged_task<void()>> requests_;
    bool stopping_ = false;
    std::condition_variable called_;
    std::thread thread_;
};

}  // namespace quarlin::sim

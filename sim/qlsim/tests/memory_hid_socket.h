// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "hid/report_descriptor.h"
#include "hidbus/hid_device.h"

namespace quarlin::sim::testing {

// A program's view of one place on the bus, and how the bus behaves. Lives longer than the sockets on it.
class HidPlace {
  public:
    using Report = std::vector<std::uint8_t>;

    // What a program does. Each is false, or nothing, when the transfer fails. Reports begin with their report ID and
    // are as long as the descriptor says; anything else is thrown back as std::logic_error.
    bool SetFeature(const Report& report) {
        return Transfer([&](HidFunction& function) {
            Check(report, lengths_.feature, "feature");
            return function.SetFeature(report);
        });
    }
    std::optional<Report> GetFeature(std::uint8_t id = 0) {
        Report report;
        const bool done = Transfer([&](HidFunction& function) {
            report.assign(lengths_.feature, 0);
            report.at(0) = id;
            return function.GetFeature(report);
        });
        return done ? std::optional(report) : std::nullopt;
    }
    bool SetOutput(const Report& report) {
        return Transfer([&](HidFunction& function) {
            Check(report, lengths_.output, "output");
            return function.SetOutput(report);
        });
    }

    // Waits until a condition on the place holds; false when it does not within a generous time.
    template <typename Condition>
    bool WaitFor(const Condition& condition) {
        std::unique_lock hold(lock_);
        return changed_.wait_for(hold, std::chrono::seconds(20), [&] { return condition(*this); });
    }
    bool WaitForInputs(std::size_t count) {
        return WaitFor([count](const HidPlace& place) { return place.inputs.size() >= count; });
    }
    // Input reports as they came, and none of them any more.
    std::vector<Report> TakeInputs() {
        const std::lock_guard hold(lock_);
        return std::exchange(inputs, {});
    }
    // Changes or reads the members below while sockets are in use.
    template <typename Function>
    auto With(const Function& function) {
        const std::lock_guard hold(lock_);
        changed_.notify_all();
        return function(*this);
    }

    std::optional<HidIdentity> identity;  // of what is plugged in
    std::vector<Report> inputs;
    int plugged = 0;    // how often
    int unplugged = 0;  // likewise, whoever did it
    bool refusePlug = false;

  private:
    friend class MemoryHidSocket;

    template <typename Request>
    bool Transfer(const Request& request) {
        const std::lock_guard serve(serving_);
        HidFunction* function = nullptr;
        {
            const std::lock_guard hold(lock_);
            function = function_;
        }
        if (function == nullptr) {
            return false;
        }
        const HidAnswer answer = request(*function);
        if (answer == HidAnswer::kUnplug) {
            Lose();
        }
        return answer == HidAnswer::kDone;
    }
    static void Check(const Report& report, std::size_t length, const char* kind) {
        if (length == 0 || report.size() != length) {
            throw std::logic_error(std::string("a wrong length of a ") + kind + " report");
        }
    }
    void Lose() {
        const std::lock_guard hold(lock_);
        unplugged += function_ == nullptr ? 0 : 1;
        function_ = nullptr;
        identity.reset();
        changed_.notify_all();
    }

    std::mutex serving_;  // one request at a time, none during Unplug
    std::mutex lock_;
    std::condition_variable changed_;
    HidFunction* function_ = nullptr;
    HidReportLengths lengths_;
};

class MemoryHidSocket final : public HidSocket {
  public:
    explicit MemoryHidSocket(HidPlace& place) : place_(place) {}
    ~MemoryHidSocket() override { Unplug(); }

    void Plug(const HidIdentity& identity, HidFunction& function) override {
        const std::lock_guard hold(place_.lock_);
        const auto lengths = MeasureReportDescriptor(identity.reportDescriptor);
        if (place_.refusePlug || !lengths) {
            throw HidBusError(lengths ? "the bus does not run" : "the report descriptor is wrong");
        }
        if (place_.function_ != nullptr) {
            throw HidBusError("a device is plugged in already");
        }
        place_.identity = identity;
        place_.function_ = &function;
        place_.lengths_ = *lengths;
        ++place_.plugged;
        place_.changed_.notify_all();
    }
    void Unplug() override {
        const std::lock_guard serve(place_.serving_);
        place_.Lose();
    }
    bool IsPlugged() const override {
        const std::lock_guard hold(place_.lock_);
        return place_.function_ != nullptr;
    }
    bool SendInput(std::span<const std::uint8_t> report) override {
        const std::lock_guard hold(place_.lock_);
        if (place_.function_ == nullptr) {
            return false;
        }
        if (report.size() != place_.lengths_.input) {
            throw std::logic_error("a wrong length of an input report");
        }
        place_.inputs.emplace_back(report.begin(), report.end());
        place_.changed_.notify_all();
        return true;
    }

  private:
    HidPlace& place_;
};

// Sockets on one place, for a scenario with one device.
inline HidSocketMaker SocketsOn(HidPlace& place) {
    return [&place] { return std::make_unique<MemoryHidSocket>(place); };
}

// As many places as sockets are made, in that order. Lives longer than the sockets.
class MemoryHidBus {
  public:
    HidSocketMaker Maker() {
        return [this] {
            const std::lock_guard hold(lock_);
            return std::make_unique<MemoryHidSocket>(places_.emplace_back());
        };
    }
    HidPlace& operator[](std::size_t index) {
        const std::lock_guard hold(lock_);
        return places_.at(index);
    }

  private:
    std::mutex lock_;
    std::deque<HidPlace> places_;
};

}  // namespace quarlin::sim::testing

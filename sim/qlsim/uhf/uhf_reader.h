// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "hidbus/hid_device.h"
#include "uhf/engine.h"
#include "uhf/faults.h"

namespace quarlin::sim {

struct UhfSettings {
    std::uint16_t vendor = 0x24E9;
    std::uint16_t product = 0x3993;
    std::uint16_t version = 0x0100;
    std::string instance;  // as HidIdentity has it
    // All output and all input reports are so long, with their report ID; 2 to 4096.
    std::size_t outputLength = 64;
    std::size_t inputLength = 64;
    UhfRadio radio;
    std::vector<TagSettings> tags;
};

// What crossed the bus: a whole report, as long as the descriptor says.
struct UhfTransfer {
    bool fromHost = true;
    Bytes report;
};

struct UhfCounters {
    std::uint64_t received = 0;  // output reports, refused ones as well
    std::uint64_t sent = 0;      // input reports
    std::uint64_t lost = 0;      // input reports that the bus did not take
    std::size_t waiting = 0;     // late answers not yet given
};

// A UHF RFID reader at its USB socket: takes commands in output reports, answers them in input reports, and goes wrong
// on request. It has no feature reports. All functions may be called from any thread.
//
// An answer is handed to the bus before the output report is done; a late one comes from another thread. Held and
// delayed answers die with the plug, as the selection and the inventory round do; tags, faults and the log stay.
class UhfReader final : public HidFunction {
  public:
    // The socket outlives the reader. Nothing is plugged in yet.
    UhfReader(const UhfSettings& settings, HidSocket& socket);
    UhfReader(const UhfReader&) = delete;
    UhfReader& operator=(const UhfReader&) = delete;
    // Unplugs.
    ~UhfReader() override;

    // As HidSocket has them.
    void Plug();
    void Unplug();
    bool IsPlugged() const { return socket_.IsPlugged(); }

    // Tags and radio: calls the function with the engine, while no command is carried out, and hands back its result.
    template <typename Function>
    auto With(const Function& function) {
        const std::lock_guard hold(lock_);
        return function(engine_);
    }

    // Throws std::invalid_argument for what the descriptor makes impossible: a reply code that no input report has, an
    // offset behind the report's end, less than one byte.
    void AddFault(const UhfFault& fault);
    void ClearFaults();
    std::vector<UhfFault> Faults() const;
    // Gives the late answers in the order of their commands and tells how many there were.
    std::size_t AnswerNow();
    // Sends an input report that nobody asked for, filled up with zeros; false when the device is unplugged. Throws
    // std::invalid_argument as AddFault does, and when it is too long.
    bool SendReport(Bytes report);

    // The last transfers, oldest first, a thousand at most.
    std::vector<UhfTransfer> Log() const;
    // Only the commands of it, and without the zeros that fill the report: see UhfFrameOf.
    std::vector<Bytes> ReceivedFrames() const;
    // The counters stay.
    void ClearLog();
    UhfCounters Counters() const;
    // Each waits until the counter has reached the count; false when it has not in time.
    bool WaitForReceived(std::uint64_t count, std::chrono::milliseconds patience = std::chrono::seconds(20)) const;
    bool WaitForWaiting(std::size_t count, std::chrono::milliseconds patience = std::chrono::seconds(20)) const;

    HidIdentity Identity() const;

    HidAnswer SetFeature(std::span<const std::uint8_t> report) override;
    HidAnswer GetFeature(std::span<std::uint8_t> report) override;
    HidAnswer SetOutput(std::span<const std::uint8_t> report) override;

  private:
    using Clock = std::chrono::steady_clock;
    using Guard = std::unique_lock<std::mutex>;

    struct Late {
        Clock::time_point due;  // the far end of time: not by itself
        Bytes report;
    };

    Bytes AnswerTo(std::span<const std::uint8_t> report, const std::vector<UhfFault>& faults);
    bool Deliver(const Bytes& report);
    void Note(bool fromHost, std::span<const std::uint8_t> report);
    void CheckReport(std::size_t offset, std::uint8_t value) const;
    void Forget();
    void Work();
    void GoAway(std::uint64_t plugged);

    const UhfSettings settings_;
    HidSocket& socket_;
    std::mutex plugging_;  // held over each call of the socket's Plug and Unplug; taken before lock_

    mutable std::mutex lock_;  // guards all below; never held while the socket is called
    mutable std::condition_variable changed_;
    UhfEngine engine_;
    UhfFaults faults_;
    std::deque<UhfTransfer> log_;
    UhfCounters counters_;
    std::deque<Late> late_;
    std::uint64_t plugs_ = 0;
    bool leaving_ = false;  // the worker is to pull the plug
    bool stopping_ = false;
    std::thread worker_;
};

}  // namespace quarlin::sim

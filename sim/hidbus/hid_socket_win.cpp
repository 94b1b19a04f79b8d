// SPDX-License-Identifier: Apache-2.0
#include "hidbus/hid_socket_win.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <mutex>
#include <thread>
#include <utility>

#include "hidbus/bus_protocol.h"
#include "hidbus/report_layout.h"

namespace quarlin::sim {
namespace {

class Handle {
  public:
    explicit Handle(HANDLE handle) : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
    ~Handle() {
        if (handle_ != nullptr) {
            CloseHandle(handle_);
        }
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    HANDLE Get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }

  private:
    HANDLE handle_;
};

[[noreturn]] void Fail(const std::string& what, DWORD error) {
    throw HidBusError("HID bus: " + what + " (error " + std::to_string(error) + ")");
}

const char* WhyNotPlugged(DWORD error) {
    switch (error) {
        case ERROR_INVALID_NAME:
            return "the instance has characters that a device name cannot have";
        case ERROR_ALREADY_EXISTS:
            return "another device of this vendor, product and instance is plugged in";
        case ERROR_DEVICE_NOT_CONNECTED:
            return "the system has no driver for the device";
        default:
            return "the device could not be plugged in";
    }
}

std::vector<std::uint8_t> PlugMessage(const HidIdentity& identity) {
    if (identity.reportDescriptor.size() > bus::kMaxDescriptor) {
        throw HidBusError("HID bus: the report descriptor is too long");
    }
    if (identity.instance.size() > bus::kMaxInstance) {
        throw HidBusError("HID bus: the instance is too long");
    }
    if (identity.collection > bus::kMaxCollection) {
        throw HidBusError("HID bus: the number of the collection is too high");
    }
    bus::PlugRequest request = {};
    request.vendor = identity.vendor;
    request.product = identity.product;
    request.version = identity.version;
    request.collection = identity.collection;
    request.descriptorLength = static_cast<std::uint16_t>(identity.reportDescriptor.size());
    std::memcpy(request.instance, identity.instance.data(), identity.instance.size());
    std::vector<std::uint8_t> message(sizeof(request) + identity.reportDescriptor.size());
    std::memcpy(message.data(), &request, sizeof(request));
    std::memcpy(message.data() + sizeof(request), identity.reportDescriptor.data(), identity.reportDescriptor.size());
    return message;
}

// Events that are used again: a call is made for each report, and each needs one. (One for each thread would not do:
// the compiler's runtime frees a thread's variables before it destroys them.)
class Events {
  public:
    ~Events() {
        for (HANDLE const event : free_) {
            CloseHandle(event);
        }
    }

    HANDLE Take() {
        const std::lock_guard lock(mutex_);
        if (free_.empty()) {
            return CreateEventW(nullptr, TRUE, FALSE, nullptr);
        }
        HANDLE const event = free_.back();
        free_.pop_back();
        return event;
    }
    void Give(HANDLE event) {
        const std::lock_guard lock(mutex_);
        free_.push_back(event);
    }

  private:
    std::mutex mutex_;
    std::vector<HANDLE> free_;
};

class Event {
  public:
    explicit Event(Events& events) : events_(events), event_(events.Take()) {}
    ~Event() { events_.Give(event_); }
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    HANDLE Get() const { return event_; }

  private:
    Events& events_;
    HANDLE event_;
};

// The bus, opened once for each socket. Calls may overlap.
class Connection {
  public:
    Connection()
        : file_(CreateFileW(bus::kPath, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                            OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr)) {
        if (!file_) {
            Fail("this machine has none", GetLastError());
        }
    }

    // The error, 0 when it went well.
    DWORD Call(DWORD code, std::span<const std::uint8_t> in, std::span<std::uint8_t> out, DWORD& received) const {
        const Event done(events_);
        OVERLAPPED overlapped = {};
        overlapped.hEvent = done.Get();
        if (DeviceIoControl(file_.Get(), code, const_cast<std::uint8_t*>(in.data()), static_cast<DWORD>(in.size()),
                            out.data(), static_cast<DWORD>(out.size()), nullptr, &overlapped) == FALSE &&
            GetLastError() != ERROR_IO_PENDING) {
            return GetLastError();
        }
        return GetOverlappedResult(file_.Get(), &overlapped, &received, TRUE) != FALSE ? 0 : GetLastError();
    }

    DWORD Call(DWORD code, std::span<const std::uint8_t> in) const {
        DWORD received = 0;
        return Call(code, in, {}, received);
    }

  private:
    Handle file_;
    mutable Events events_;
};

// The message of an exchange: an answer, and the input reports that the device sent while it worked on it. They travel
// together because each trip to the driver costs as much as all the rest.
class AnswerMessage {
  public:
    // More would fill the queue that the system keeps for a reader before the reader has its turn.
    static constexpr std::size_t kMaxInputs = 4;

    void Begin(std::uint64_t request) {
        answer_ = {};
        answer_.id = request;
        inputs_.clear();
    }

    bool AddInput(std::span<const std::uint8_t> report) {
        if (inputs_.size() == kMaxInputs) {
            return false;
        }
        inputs_.emplace_back(report.begin(), report.end());
        return true;
    }

    // Takes the input reports out again.
    std::vector<std::vector<std::uint8_t>> TakeInputs() { return std::exchange(inputs_, {}); }

    std::span<const std::uint8_t> Finish(bus::Verdict verdict, std::span<const std::uint8_t> report) {
        answer_.verdict = verdict;
        answer_.length = static_cast<std::uint32_t>(report.size());
        answer_.inputs = static_cast<std::uint32_t>(inputs_.size());
        bytes_.clear();
        Append(std::as_bytes(std::span(&answer_, 1)));
        Append(std::as_bytes(report));
        for (const std::vector<std::uint8_t>& input : inputs_) {
            const auto length = static_cast<std::uint32_t>(input.size());
            Append(std::as_bytes(std::span(&length, 1)));
            Append(std::as_bytes(std::span(input)));
        }
        return bytes_;
    }

  private:
    void Append(std::span<const std::byte> bytes) {
        const auto* const begin = reinterpret_cast<const std::uint8_t*>(bytes.data());
        bytes_.insert(bytes_.end(), begin, begin + bytes.size());
    }

    bus::Answer answer_ = {};
    std::vector<std::vector<std::uint8_t>> inputs_;
    std::vector<std::uint8_t> bytes_;
};

class WindowsHidSocket final : public HidSocket {
  public:
    ~WindowsHidSocket() override { Leave(); }

    void Plug(const HidIdentity& identity, HidFunction& function) override {
        const std::lock_guard lock(plugMutex_);
        if (IsPlugged()) {
            throw HidBusError("HID bus: something is plugged into this socket already");
        }
        const std::vector<std::uint8_t> message = PlugMessage(identity);
        auto layout = std::make_shared<bus::ReportLayout>();
        if (!layout->Parse(identity.reportDescriptor.data(), identity.reportDescriptor.size())) {
            throw HidBusError("HID bus: the bus cannot carry this report descriptor");
        }
        // A device that vanished by itself may still be on its way out.
        Leave();
        if (const DWORD error = connection_.Call(bus::kPlug, message); error != 0) {
            Leave();
            Fail(WhyNotPlugged(error), error);
        }
        SetPlugged(std::move(layout));
        thread_ = std::thread([this, &function] { Serve(function); });
    }

    void Unplug() override {
        const std::lock_guard lock(plugMutex_);
        Leave();
    }

    bool IsPlugged() const override { return Plugged() != nullptr; }

    bool SendInput(std::span<const std::uint8_t> report) override {
        const std::shared_ptr<const bus::ReportLayout> layout = Plugged();
        if (layout == nullptr) {
            return false;
        }
        if (report.empty() || report.size() != layout->Length(bus::ReportType::kInput, report[0])) {
            throw HidBusError("HID bus: the descriptor has no input report of this ID and length");
        }
        if (answering == &answer_) {
            if (answer_.AddInput(report)) {
                return true;
            }
            return SendInputsSoFar() && SendAtOnce(report);
        }
        return SendAtOnce(report);
    }

  private:
    std::shared_ptr<const bus::ReportLayout> Plugged() const {
        const std::lock_guard lock(stateMutex_);
        return layout_;
    }

    void SetPlugged(std::shared_ptr<const bus::ReportLayout> layout) {
        const std::lock_guard lock(stateMutex_);
        layout_ = std::move(layout);
    }

    void Leave() {
        SetPlugged(nullptr);
        connection_.Call(bus::kUnplug, {});
        if (thread_.joinable()) {
            thread_.join();
        }
    }

    bool SendInputsSoFar() {
        for (const std::vector<std::uint8_t>& report : answer_.TakeInputs()) {
            if (!SendAtOnce(report)) {
                return false;
            }
        }
        return true;
    }

    bool SendAtOnce(std::span<const std::uint8_t> report) const {
        switch (const DWORD error = connection_.Call(bus::kSendInput, report); error) {
            case 0:
                return true;
            case ERROR_DEVICE_NOT_CONNECTED:
                return false;
            default:
                Fail("an input report was not taken", error);
        }
    }

    void Serve(HidFunction& function) {
        answering = &answer_;
        answer_.Begin(0);
        std::span<const std::uint8_t> answer = answer_.Finish(bus::Verdict::kDone, {});
        std::array<std::uint8_t, sizeof(bus::Request) + bus::kMaxReport> message;
        DWORD received = 0;
        while (connection_.Call(bus::kExchange, answer, message, received) == 0) {
            bus::Request request = {};
            std::memcpy(&request, message.data(), sizeof(request));
            const std::span<std::uint8_t> report(message.data() + sizeof(request), request.length);
            answer_.Begin(request.id);
            switch (Ask(function, request.kind, report)) {
                case HidAnswer::kDone:
                    answer = answer_.Finish(bus::Verdict::kDone, request.kind == bus::Kind::kGetFeature
                                                                     ? report
                                                                     : std::span<const std::uint8_t>());
                    break;
                case HidAnswer::kRefuse:
                    answer = answer_.Finish(bus::Verdict::kRefuse, {});
                    break;
                case HidAnswer::kUnplug:
                    SetPlugged(nullptr);
                    answer = answer_.Finish(bus::Verdict::kVanish, {});
                    break;
            }
        }
        SetPlugged(nullptr);
    }

    static HidAnswer Ask(HidFunction& function, bus::Kind kind, std::span<std::uint8_t> report) {
        switch (kind) {
            case bus::Kind::kSetFeature:
                return function.SetFeature(report);
            case bus::Kind::kSetOutput:
                return function.SetOutput(report);
            case bus::Kind::kGetFeature:
                std::fill(report.begin() + 1, report.end(), std::uint8_t{0});
                return function.GetFeature(report);
        }
        return HidAnswer::kRefuse;
    }

    // The answer that this thread is working on.
    static thread_local const AnswerMessage* answering;

    Connection connection_;
    // Held while plugging in or out.
    std::mutex plugMutex_;
    mutable std::mutex stateMutex_;
    // Null when nothing is plugged in.
    std::shared_ptr<const bus::ReportLayout> layout_;
    std::thread thread_;
    // Of the serving thread.
    AnswerMessage answer_;
};

thread_local const AnswerMessage* WindowsHidSocket::answering = nullptr;

}  // namespace

std::unique_ptr<HidSocket> MakeHidSocket() {
    return std::make_unique<WindowsHidSocket>();
}

}  // namespace quarlin::sim

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <limits>
#include <mutex>
#include <string>

#include "core/byte_port.h"

namespace quarlin::sim::testing {

// What came out of a port, and how the port behaves.
struct Wire {
    std::mutex lock;
    std::condition_variable changed;
    std::string bytes;
    int opened = 0;
    int closed = 0;
    bool refuseOpen = false;
    bool gone = false;
    std::size_t room = std::numeric_limits<std::size_t>::max();  // bytes until the reader has fallen behind

    // Waits until a condition on the bytes holds; false when it does not within a generous time.
    template <typename Condition>
    bool WaitFor(const Condition& condition) {
        std::unique_lock hold(lock);
        return changed.wait_for(hold, std::chrono::seconds(20), [&] { return condition(*this); });
    }
    std::string Bytes() {
        const std::lock_guard hold(lock);
        return bytes;
    }
};

class MemoryPort final : public BytePort {
  public:
    explicit MemoryPort(Wire& wire) : wire_(wire) {}

    void Open() override {
        const std::lock_guard hold(wire_.lock);
        if (wire_.refuseOpen) {
            throw PortError("the port COM8 cannot be opened: no such cable");
        }
        ++wire_.opened;
        open_ = true;
    }
    void Close() override {
        const std::lock_guard hold(wire_.lock);
        wire_.closed += open_ ? 1 : 0;
        open_ = false;
        wire_.changed.notify_all();
    }
    bool IsOpen() const override { return open_; }
    std::size_t Write(std::string_view bytes) override {
        std::unique_lock hold(wire_.lock);
        if (wire_.gone) {
            throw PortError("the port COM8 takes no bytes: cut off");
        }
        if (wire_.room == 0) {
            // As a real port does, with its time-out.
            wire_.changed.wait_for(hold, std::chrono::milliseconds(100), [this] { return wire_.room != 0; });
        }
        const std::size_t taken = std::min(bytes.size(), wire_.room);
        wire_.bytes.append(bytes.substr(0, taken));
        wire_.room -= wire_.room == std::numeric_limits<std::size_t>::max() ? 0 : taken;
        wire_.changed.notify_all();
        return taken;
    }

  private:
    Wire& wire_;
    bool open_ = false;
};

}  // namespace quarlin::sim::testing

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace quarlin::sim {

// A USB HID device as the system sees it when it is plugged in.
struct HidIdentity {
    std::uint16_t vendor = 0;
    std::uint16_t product = 0;
    std::uint16_t version = 0x0100;
    std::vector<std::uint8_t> reportDescriptor;
    // The part of the interface path that tells equal devices apart, such as "6&2f9a1b0c&0&0000"; empty: the bus makes
    // one up, another one for each socket.
    std::string instance;
    // Of a device that has several collections at the top, each of which the system shows as a device of its own: which
    // of them this one is, 1 to 99. It comes into the path behind the product, as "&col02". 0: there is one only.
    std::uint16_t collection = 0;
};

enum class HidAnswer {
    kDone,
    kRefuse,  // the transfer fails
    kUnplug,  // the device vanishes in the middle of the transfer
};

// What a device answers. Reports begin with their report ID, 0 when the descriptor names none, as on Windows' own
// interface. Called on a thread of the socket, one call at a time; a call may send input reports, but not plug or
// unplug.
class HidFunction {
  public:
    virtual ~HidFunction() = default;

    virtual HidAnswer SetFeature(std::span<const std::uint8_t> report) = 0;
    // The report ID is filled in, the rest is zero.
    virtual HidAnswer GetFeature(std::span<std::uint8_t> report) = 0;
    virtual HidAnswer SetOutput(std::span<const std::uint8_t> report) = 0;
};

class HidBusError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// A place on the bus where one device can be plugged in. All functions may be called from any thread.
class HidSocket {
  public:
    // Unplugs.
    virtual ~HidSocket() = default;

    // Returns when programs can find and open the device. The function stays the caller's and is called until Unplug
    // has returned. Throws HidBusError.
    virtual void Plug(const HidIdentity& identity, HidFunction& function) = 0;
    // Returns when programs no longer find it; what they have open fails. A device that has vanished by itself is
    // waited for as well. Does nothing when nothing is plugged in.
    virtual void Unplug() = 0;
    virtual bool IsPlugged() const = 0;
    // Hands over one input report, as long as the descriptor says (with its report ID, as above); throws HidBusError
    // when the descriptor has no such report. Returns when the report waits for the reader of every open handle; false
    // when the device is not plugged in. A call from the function counts as part of the answer: it may return at once,
    // and the report then comes after the end of the transfer. The reports of one thread stay in order.
    virtual bool SendInput(std::span<const std::uint8_t> report) = 0;
};

using HidSocketMaker = std::function<std::unique_ptr<HidSocket>()>;

}  // namespace quarlin::sim

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace quarlin::sim {

class PortError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// The far end of a serial cable.
class BytePort {
  public:
    virtual ~BytePort() = default;

    // Throws PortError.
    virtual void Open() = 0;
    virtual void Close() = 0;
    virtual bool IsOpen() const = 0;
    // Hands over what the port takes within a short while (a tenth of a second) and returns how many bytes that were:
    // fewer than given, or none, when nobody takes them at the other end. Throws PortError when the port is gone.
    virtual std::size_t Write(std::string_view bytes) = 0;
};

using PortMaker = std::function<std::unique_ptr<BytePort>(const std::string& name, std::uint32_t baud)>;

}  // namespace quarlin::sim

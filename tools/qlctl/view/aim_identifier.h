// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace quarlin::qlctl {

// A symbology identifier of ISO/IEC 15424 ("]C1") as the engine sent it, and what it says.
struct AimIdentifier {
    // Without the zeros and blanks that fill it up; what is no character of ASCII is shown as '.'. Empty when there was
    // no identifier.
    std::string text;
    // "GS1-128"; empty when the identifier is not known.
    std::string name;
    // "FNC1 in the first position"; empty when there is no more to say.
    std::string detail;
};

AimIdentifier ReadAimIdentifier(std::span<const std::uint8_t> bytes);

}  // namespace quarlin::qlctl

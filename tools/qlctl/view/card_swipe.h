// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace quarlin::qlctl {

// A reader as `card list` shows it; texts are UTF-8.
struct CardReader {
    int index = 0;
    std::string name;
    std::string serialNumber;
    std::string softwareId;
    bool encrypts = false;
    int vendor = 0;
};

struct CardTrack {
    // As the reader gives it, which may be negative or more than a track holds.
    int length = 0;
    // The bytes in use; none when the length is impossible.
    std::vector<std::uint8_t> data;
};

// One swipe, copied out of the library's record.
struct CardSwipe {
    bool isValid = false;
    bool isEncrypted = false;
    std::array<CardTrack, 3> tracks;
    // The same tracks with most digits masked by the reader.
    std::array<CardTrack, 3> maskedTracks;
    // Of each track, 0 is good.
    std::array<std::uint8_t, 3> decodeStatus{};
    int encodeType = 0;
    std::string readerSerial;
    std::vector<std::uint8_t> keySerialNumber;
    std::vector<std::uint8_t> raw;
};

// Account numbers, names and the issuer's data are hidden unless the user wants to see them.
enum class Privacy {
    kMask,
    kShow,
};

}  // namespace quarlin::qlctl

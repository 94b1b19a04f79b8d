// SPDX-License-Identifier: Apache-2.0
#include "gps/replay.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace quarlin::sim {
namespace {

constexpr std::size_t kFullSpeedPiece = 2048;  // small enough that a command comes through at any time
constexpr double kBitsPerByte = 10;            // with start bit and stop bit

}  // namespace

std::string LoadReplayFile(const std::string& name, const std::filesystem::path& scenarioFolder) {
    const std::filesystem::path given = std::filesystem::u8path(name);
    for (const std::filesystem::path& path : {given, scenarioFolder / given}) {
        std::error_code ignored;
        if (!std::filesystem::is_regular_file(path, ignored)) {
            continue;
        }
        std::ifstream stream(path, std::ios::binary);
        if (stream) {
            return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
        }
    }
    throw CommandError("the file \"" + name + "\" cannot be read");
}

std::string Replay::TakePiece() {
    if (fullSpeed_) {
        const std::string piece = bytes_.substr(at_, kFullSpeedPiece);
        at_ += piece.size();
        return piece;
    }
    const std::size_t lineEnd = bytes_.find('\n', at_);
    const std::string piece = bytes_.substr(at_, lineEnd == std::string::npos ? lineEnd : lineEnd + 1 - at_);
    at_ += piece.size();
    next_ += static_cast<double>(piece.size()) * kBitsPerByte / baud_;
    return piece;
}

}  // namespace quarlin::sim

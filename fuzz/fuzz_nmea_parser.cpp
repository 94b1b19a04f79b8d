// SPDX-License-Identifier: Apache-2.0
// Sentences, one a line, straight into the parser: also with characters that the line reader would have kept back.
#include "comparison.h"
#include "gps/nmea_parser.h"

#include <memory>
#include <string_view>

using namespace quarlin;  // NOLINT(google-build-using-namespace)

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    gps::FixState fix;
    reference::Receiver expected;
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        const std::string_view text = rest.substr(0, end);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);

        // On the heap and exactly as long as the line: a byte read beyond its terminator is noticed.
        const auto line = std::make_unique<char[]>(text.size() + 1);
        text.copy(line.get(), text.size());
        if (gps::ParseSentence(fix, line.get()) != 0) {
            fuzz::CheckLine(line.get(), "a result of 0");
        }
        expected.Take(std::string(line.get()));
        fuzz::CheckState(fix, expected);
    }
    fuzz::CheckRefusedCopy(fix);
    return 0;
}

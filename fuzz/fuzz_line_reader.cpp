// SPDX-License-Identifier: Apache-2.0
// Bytes as a serial line may deliver them: line reader, then parser.
#include "comparison.h"
#include "gps/line_assembler.h"
#include "gps/nmea_parser.h"

using namespace quarlin;  // NOLINT(google-build-using-namespace)

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::string> expectedLines = reference::SplitLines(fuzz::Bytes(data, size));
    gps::LineAssembler lines;
    gps::FixState fix;
    reference::Receiver expected;
    std::size_t finished = 0;
    for (std::size_t i = 0; i < size; ++i) {
        if (!lines.Take(data[i])) {
            continue;
        }
        const std::string& expectedLine = expectedLines.at(finished++);
        fuzz::CheckLine(lines.Line(), expectedLine);
        gps::ParseSentence(fix, lines.Line());
        expected.Take(expectedLine);
        fuzz::CheckState(fix, expected);
    }
    if (finished != expectedLines.size()) {
        fuzz::CheckLine("no line", expectedLines[finished]);
    }
    fuzz::CheckRefusedCopy(fix);
    return 0;
}

// SPDX-License-Identifier: Apache-2.0
// Whatever bytes a scanner reads: as a text of Java's.
#include "jni/modified_utf8.h"
#include "reference/reference_modified_utf8.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

using namespace quarlin;  // NOLINT(google-build-using-namespace)

namespace {

void Expect(bool same, const char* what) {
    if (!same) {
        std::fprintf(stderr, "%s differs from the reference\n", what);
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // A block of exactly its size.
    const std::vector<char> block(data, data + size);
    const std::string_view bytes(block.data(), block.size());
    const std::string expected = reference::ReferenceModifiedUtf8(reference::ReferenceUnits(std::string(bytes)));

    const std::string text = jni::ToModifiedUtf8(bytes);
    Expect(text == expected, "the text");
    Expect(jni::IsModifiedUtf8(text), "whether the text is one");
    Expect(jni::IsModifiedUtf8(bytes) == (text == bytes), "whether the bytes are a text already");
    Expect(text.find('\0') == std::string::npos, "that a terminator ends it");
    return 0;
}

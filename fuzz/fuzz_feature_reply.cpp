// SPDX-License-Identifier: Apache-2.0
// What a card reader may answer when it is asked for its identity. The input is the reply.
#include "core/bounded_text.h"
#include "msr/feature_command.h"
#include "reference/reference_card_reader.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cwchar>

using namespace quarlin;  // NOLINT(google-build-using-namespace)

namespace {

void Check(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "the reply was not taken as it is: %s\n", what);
        std::abort();
    }
}

// As the list of readers is filled: a field of 150 characters.
void CheckShown(const std::wstring& text, const std::wstring& expected) {
    constexpr wchar_t kCanary = L'?';
    std::array<wchar_t, 151> field;
    field.fill(kCanary);
    static_cast<void>(BoundedCopy(field.data(), 150, text.c_str()));
    Check(field[expected.size()] == L'\0' && expected == field.data(), "shown text");
    Check(field[150] == kCanary, "room behind the shown text");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Exactly as long as the reply: a byte read behind it is noticed.
    const reference::ReportBytes reply(data, data + size);
    const std::wstring text = msr::PropertyText(reply);
    Check(text == reference::Property(reply), "property");
    CheckShown(text, reference::ShownProperty(reply));
    const std::optional<std::uint8_t> level = msr::SecurityLevel(reply);
    const std::optional<int> expected = reference::SecurityLevel(reply);
    Check(level == expected, "security level");
    return 0;
}

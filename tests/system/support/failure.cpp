// SPDX-License-Identifier: Apache-2.0
#include "support/failure.h"

#include <array>
#include <cstdint>

namespace quarlin::test {

std::ostream& operator<<(std::ostream& out, const Failure& failure) {
    return out << "code " << static_cast<int32_t>(failure.code) << ", \"" << failure.text << '"';
}

Failure FetchLastErrorBy(GetLastErrorFunction getLastError) {
    // Longer than any text of the library. Filled, so that a text without terminator shows.
    std::array<char, 8192> buffer;
    buffer.fill('?');
    buffer.back() = '\0';
    Failure failure;
    failure.code = getLastError(buffer.data(), static_cast<int>(buffer.size()) - 1);
    failure.text = buffer.data();
    return failure;
}

::testing::AssertionResult FailedWith(GetLastErrorFunction getLastError, const char* call, QLerr returned, QLerr code,
                                      std::string_view text) {
    const Failure expected{code, std::string(text)};
    const Failure fetched = FetchLastErrorBy(getLastError);
    if (returned != code || fetched != expected) {
        return ::testing::AssertionFailure() << call << "\n  expected: " << expected << "\n  returned: code "
                                             << static_cast<int32_t>(returned) << "\n  left:     " << fetched;
    }
    const Failure again = FetchLastErrorBy(getLastError);
    if (again != Failure{}) {
        return ::testing::AssertionFailure() << call << "\n  the record was fetched and is still there: " << again;
    }
    return ::testing::AssertionSuccess();
}

::testing::AssertionResult Succeeded(GetLastErrorFunction getLastError, const char* call, QLerr returned) {
    const Failure left = FetchLastErrorBy(getLastError);
    if (returned != QLERR_OK || left != Failure{}) {
        return ::testing::AssertionFailure() << call << "\n  expected: success and no record\n  returned: code "
                                             << static_cast<int32_t>(returned) << "\n  left:     " << left;
    }
    return ::testing::AssertionSuccess();
}

}  // namespace quarlin::test

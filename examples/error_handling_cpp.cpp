// SPDX-License-Identifier: Apache-2.0
// Errors in a C++ program: failures as an exception of its own, and the one exception that the library itself raises.
#include <quarlin/quarlin.h>

#include <array>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>

namespace {

class QuarlinError : public std::runtime_error {
  public:
    QuarlinError(QLerr code, const std::string& text) : std::runtime_error(text), code_(code) {}
    QLerr Code() const noexcept { return code_; }

  private:
    QLerr code_;
};

// Turns a result into an exception; the text has to be fetched on the thread that made the call, before its next one.
void Check(QLerr result) {
    if (result == QLERR_OK) {
        return;
    }
    std::array<char, 1024> text{};
    const QLerr code = QLAPI_GetLastError(text.data(), static_cast<int>(text.size()));
    throw QuarlinError(code, text.data());
}

void ShowCodeAndText() {
    try {
        double bearing = 0.0;
        Check(QLGPS_GetBearing(&bearing));
    } catch (const QuarlinError& error) {
        std::cout << "Failed with code " << error.Code() << ": " << error.what() << "\n";
    }
}

// QLAPI_GetLastError reports a buffer that is too small by an exception, because there is no other place for it; the
// error stays, to be fetched with a larger buffer.
bool ShowTooSmallBuffer() {
    if (QLGPS_Enable() == QLERR_OK) {
        return false;
    }
    bool raised = false;
    std::array<char, 10> small{};
    try {
        QLAPI_GetLastError(small.data(), static_cast<int>(small.size()));
    } catch (const std::runtime_error& error) {
        const std::string text = error.what();
        std::cout << "Too small a buffer: " << text.substr(0, text.find('\n')) << "\n";
        raised = true;
    }
    std::cout << "It holds: " << small.data() << "\n";

    std::array<char, 1024> large{};
    const QLerr code = QLAPI_GetLastError(large.data(), static_cast<int>(large.size()));
    std::cout << "Fetched with a larger one: code " << code << ", " << large.data() << "\n";
    return raised;
}

}  // namespace

int main() {
    ShowCodeAndText();
    return ShowTooSmallBuffer() ? EXIT_SUCCESS : EXIT_FAILURE;
}

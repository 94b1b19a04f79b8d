// SPDX-License-Identifier: Apache-2.0
#include "console/output.h"

#include "failure.h"
#include "view/terminal.h"

#include <windows.h>
#include <cstdlib>

namespace quarlin::qlctl {
namespace {

constexpr int kUsualRows = 24;

}  // namespace

Output::Output() : handle_(GetStdHandle(STD_OUTPUT_HANDLE)) {
    isConsole_ = GetConsoleMode(handle_, &modeBefore_) != FALSE;
    if (isConsole_) {
        codePageBefore_ = GetConsoleOutputCP();
        SetConsoleOutputCP(CP_UTF8);
        canRedraw_ = SetConsoleMode(
                         handle_, modeBefore_ | ENABLE_PROCESSED_OUTPUT | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != FALSE;
    }
}

Output::~Output() {
    if (isConsole_) {
        SetConsoleMode(handle_, modeBefore_);
        SetConsoleOutputCP(codePageBefore_);
    }
}

void Output::Write(std::string_view text) {
    while (!text.empty()) {
        DWORD written = 0;
        if (!WriteFile(handle_, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) || written == 0) {
            throw Failure(ExitStatus::kOutput,
                          "the output cannot be written, Windows error " + std::to_string(GetLastError()));
        }
        text.remove_prefix(written);
    }
}

int Output::Rows() const {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (isConsole_ && GetConsoleScreenBufferInfo(handle_, &info)) {
        return info.srWindow.Bottom - info.srWindow.Top + 1;
    }
    const char* const lines = std::getenv("LINES");
    const int rows = lines == nullptr ? 0 : std::atoi(lines);
    return rows > 0 ? rows : kUsualRows;
}

Screen::Screen(Output& output) : output_(output) {
    output_.Write(terminal::Begin());
}

Screen::~Screen() {
    try {
        output_.Write(terminal::End());
    } catch (const Failure&) {
        // Nobody is left to see the cursor.
    }
}

void Screen::Draw(const std::vector<std::string>& lines) {
    output_.Write(terminal::Frame(lines));
}

}  // namespace quarlin::qlctl

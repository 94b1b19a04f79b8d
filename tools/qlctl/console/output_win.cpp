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

Output::Output() : m_handle(GetStdHandle(STD_OUTPUT_HANDLE)) {
    m_isConsole = GetConsoleMode(m_handle, &m_modeBefore) != FALSE;
    if (m_isConsole) {
        m_codePageBefore = GetConsoleOutputCP();
        SetConsoleOutputCP(CP_UTF8);
        m_canRedraw = SetConsoleMode(m_handle, m_modeBefore | ENABLE_PROCESSED_OUTPUT |
                                                   ENABLE_VIRTUAL_TERMINAL_PROCESSING) != FALSE;
    }
}

Output::~Output() {
    if (m_isConsole) {
        SetConsoleMode(m_handle, m_modeBefore);
        SetConsoleOutputCP(m_codePageBefore);
    }
}

void Output::Write(std::string_view text) {
    while (!text.empty()) {
        DWORD written = 0;
        if (!WriteFile(m_handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) || written == 0) {
            throw Failure(ExitStatus::kOutput,
                          "the output cannot be written, Windows error " + std::to_string(GetLastError()));
        }
        text.remove_prefix(written);
    }
}

int Output::Rows() const {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (m_isConsole && GetConsoleScreenBufferInfo(m_handle, &info)) {
        return info.srWindow.Bottom - info.srWindow.Top + 1;
    }
    const char* const lines = std::getenv("LINES");
    const int rows = lines == nullptr ? 0 : std::atoi(lines);
    return rows > 0 ? rows : kUsualRows;
}

Screen::Screen(Output& output) : m_output(output) {
    m_output.Write(terminal::Begin());
}

Screen::~Screen() {
    try {
        m_output.Write(terminal::End());
    } catch (const Failure&) {
        // Nobody is left to see the cursor.
    }
}

void Screen::Draw(const std::vector<std::string>& lines) {
    m_output.Write(terminal::Frame(lines));
}

}  // namespace quarlin::qlctl

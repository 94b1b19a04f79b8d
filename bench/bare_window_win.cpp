// SPDX-License-Identifier: Apache-2.0
#include "bare_window_win.h"

namespace quarlin::bench {

namespace {

constexpr const wchar_t* kClassName = L"Quarlin bench";
constexpr UINT kFirstRegisteredMessage = 0xC000;

}  // namespace

BareWindow::BareWindow() : thread_([this] { Listen(); }) {
    started_.WaitFor(1);
}

BareWindow::~BareWindow() {
    PostMessageW(window_, WM_CLOSE, 0, 0);
    thread_.join();
}

void BareWindow::Listen() {
    WNDCLASSEXW description{};
    description.cbSize = sizeof description;
    description.lpfnWndProc = Procedure;
    description.hInstance = GetModuleHandleW(nullptr);
    description.lpszClassName = kClassName;
    RegisterClassExW(&description);
    window_ = CreateWindowExW(0, kClassName, L"", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT,
                              CW_USEDEFAULT, nullptr, nullptr, description.hInstance, nullptr);
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    started_.Add();
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

LRESULT CALLBACK BareWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* const self = reinterpret_cast<BareWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self != nullptr && message >= kFirstRegisteredMessage) {
        self->at = Now();
        self->arrivals.Add();
        return 0;
    }
    if (message == WM_DESTROY) {
        PostQuitMessage(0);
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace quarlin::bench

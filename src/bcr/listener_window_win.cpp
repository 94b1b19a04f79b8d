// SPDX-License-Identifier: Apache-2.0
#include "bcr/listener_window_win.h"

#include "bcr/window_messages_win.h"
#include "core/library_state.h"
#include "core/quarlin_exception.h"

namespace quarlin::bcr {
namespace {

// Spelled so: programs find the class by this name.
constexpr const wchar_t* kClassName = L"Quarlin SDK Barocde API";
constexpr const wchar_t* kTitle = L"Barcode Message Listener Window";

constexpr const char* kNoClass = "Invalid Windows message window setup.";
constexpr const char* kNoWindow = "Unable to create Windows message receiving window.";

constexpr DWORD kBetweenCloses = 100;

// Posted by ourselves, to our own window.
constexpr UINT kConnectionBegins = WM_APP;

HINSTANCE Module() {
    return static_cast<HINSTANCE>(ModuleHandle());
}

// The window's class, for as long as its procedure is sure to be in memory: the system would keep it longer.
class ListenerClass {
  public:
    explicit ListenerClass(WNDPROC procedure) {
        WNDCLASSEXW known{};
        known.cbSize = sizeof known;
        if (GetClassInfoExW(Module(), kClassName, &known)) {
            isRegistered_ = true;
            return;
        }
        WNDCLASSEXW description{};
        description.cbSize = sizeof description;
        description.lpfnWndProc = procedure;
        description.hInstance = Module();
        description.lpszClassName = kClassName;
        isRegistered_ = RegisterClassExW(&description) != 0;
    }
    ListenerClass(const ListenerClass&) = delete;
    ListenerClass& operator=(const ListenerClass&) = delete;
    ~ListenerClass() {
        if (isRegistered_) {
            UnregisterClassW(kClassName, Module());
        }
    }

    bool IsRegistered() const { return isRegistered_; }

  private:
    bool isRegistered_ = false;
};

}  // namespace

void ListenerWindow::Start() {
    Require(!IsRunning(), QLERR_INTERNAL_ERROR, "error.");
    changed_ = EmulatorEvent();
    Require(changed_ != nullptr, QLERR_INTERNAL_ERROR, kNoWindow);
    failure_ = nullptr;
    stopping_ = false;
    thread_.Forget();
    phase_ = Phase::kStarting;
    if (!thread_.Start([this] { Run(); })) {
        phase_ = Phase::kIdle;
        Fail(QLERR_INTERNAL_ERROR, kNoWindow);
    }
    while (phase_ == Phase::kStarting) {
        WaitForSingleObject(changed_, INFINITE);
    }
    if (const char* const failure = failure_) {
        thread_.Forget();
        Fail(QLERR_INTERNAL_ERROR, failure);
    }
}

void ListenerWindow::Stop() {
    stopping_ = true;
    // Not for the thread's end: what is left of it keeps the library loaded by itself.
    while (phase_ == Phase::kAlive) {
        // Again and again: there may have been no room for the message, or a callback's message loop may have eaten it.
        if (const auto window = window_.load()) {
            PostMessageW(window, WM_CLOSE, 0, 0);
        }
        WaitForSingleObject(changed_, kBetweenCloses);
    }
    thread_.Forget();
}

void ListenerWindow::BeginConnection() {
    const WPARAM next = ++connection_;
    if (!PostMessageW(window_, kConnectionBegins, next, 0)) {
        // Without room for the message there is nothing to wait for either.
        passedConnection_ = next;
    }
}

void ListenerWindow::PostNotice() const {
    PostMessageW(window_, windowMessages.emulatorOnConnectState, 0, 0);
}

void ListenerWindow::Run() {
    threadId_ = GetCurrentThreadId();
    Serve();
    // The last that is touched here: whoever waits may start anew.
    void* const changed = changed_;
    phase_ = Phase::kEnded;
    SetEvent(changed);
}

void ListenerWindow::Serve() {
    const ListenerClass listenerClass(&Procedure);
    if (!listenerClass.IsRegistered()) {
        failure_ = kNoClass;
        return;
    }
    if (CreateWindowExW(0, kClassName, kTitle, WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT,
                        CW_USEDEFAULT, nullptr, nullptr, Module(), this) == nullptr) {
        failure_ = kNoWindow;
        return;
    }
    phase_ = Phase::kAlive;
    SetEvent(changed_);
    MSG message;
    // The window's end alone counts: a request to quit may be a callback's, and its message loop may have seen ours.
    while (window_ != nullptr) {
        if (GetMessageW(&message, nullptr, 0, 0) > 0) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
}

LRESULT CALLBACK ListenerWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    if (message == WM_NCCREATE) {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): what messages carry
        const auto* const creation = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        auto* const created = static_cast<ListenerWindow*>(creation->lpCreateParams);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(created));
        created->window_ = window;
    }
    // NOLINTNEXTLINE(performance-no-int-to-ptr): what the window keeps
    auto* const listener = reinterpret_cast<ListenerWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (listener == nullptr) {
        return DefWindowProcW(window, message, wParam, lParam);
    }
    try {
        return listener->Handle(window, message, wParam, lParam);
    } catch (...) {
        // A scan that is refused is dropped, and nobody is there to be told: this is no caller's thread.
        return 0;
    }
}

LRESULT ListenerWindow::Handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == windowMessages.intermecFrame) {
        if (events_.OnIntermecFrame(wParam)) {
            return 0;
        }
    } else if (message == windowMessages.rawData) {
        events_.OnRawData(wParam, lParam);
        return 0;
    } else if (message == windowMessages.emulatorOnConnectState) {
        events_.OnEmulatorNotice();
    } else if (message == kConnectionBegins) {
        // Other programs post what they like.
        if (wParam == connection_) {
            passedConnection_ = wParam;
        }
        return 0;
    } else if (message == WM_CLOSE) {
        // Whoever else closes windows must not take this one away.
        if (!stopping_) {
            return 0;
        }
    } else if (message == WM_DESTROY) {
        window_ = nullptr;
        PostQuitMessage(0);
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace quarlin::bcr

// SPDX-License-Identifier: Apache-2.0
#include "emulator_world_win.h"

#include <memory>

#include "support/shared_turn_win.h"

namespace quarlin::sim::testing {
namespace {

constexpr DWORD kPatience = EmulatorControl::kPatience;
constexpr wchar_t kListenerClass[] = L"Emulator Test Listener";

// Before any record is opened, and to the end of the program.
class OwnMachine final : public ::testing::Environment {
  public:
    OwnMachine() { SetEnvironmentVariableW(L"QLSIM_INSTANCE", std::to_wstring(GetCurrentProcessId()).c_str()); }
    void SetUp() override {
        turn_ = std::make_unique<quarlin::test::SharedTurn>(quarlin::test::kScannerEmulatorTurn,
                                                            quarlin::test::SharedTurn::Use::kExclusive);
    }
    void TearDown() override { turn_.reset(); }

  private:
    std::unique_ptr<quarlin::test::SharedTurn> turn_;
};

::testing::Environment* const kOwnMachine = ::testing::AddGlobalTestEnvironment(new OwnMachine);

UINT MessageNumber(EmulatorMessage message) {
    return RegisterWindowMessageW(kEmulatorMessageNames[static_cast<std::size_t>(message)]);
}

}  // namespace

std::wstring SimFolder() {
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), MAX_PATH));
    for (int i = 0; i < 2; ++i) {
        path.resize(path.find_last_of(L"\\/"));
    }
    return path + L"\\sim\\";
}

ListenerWindow::ListenerWindow(Answer answer)
    : answer_(std::move(answer)),
      notice_(MessageNumber(EmulatorMessage::kOnConnectState)),
      told_(CreateEventW(nullptr, FALSE, FALSE, nullptr)) {
    std::promise<HWND> made;
    std::future<HWND> window = made.get_future();
    thread_ = std::thread([this, &made] { Run(made); });
    window_ = window.get();
}

ListenerWindow::~ListenerWindow() {
    PostMessageW(window_, WM_CLOSE, 0, 0);
    thread_.join();
    CloseHandle(told_);
}

bool ListenerWindow::WaitForNotices(int count) const {
    const ULONGLONG end = GetTickCount64() + kPatience;
    while (notices_ < count) {
        const ULONGLONG now = GetTickCount64();
        if (now >= end || WaitForSingleObject(told_, static_cast<DWORD>(end - now)) != WAIT_OBJECT_0) {
            return notices_ >= count;
        }
    }
    return true;
}

LRESULT CALLBACK ListenerWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* const listener = reinterpret_cast<ListenerWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (listener != nullptr && message == listener->notice_) {
        const LRESULT answer = listener->answer_();
        ++listener->notices_;
        SetEvent(listener->told_);
        return answer;
    }
    if (message == WM_DESTROY) {
        PostQuitMessage(0);
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

void ListenerWindow::Run(std::promise<HWND>& made) {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = kListenerClass;
    RegisterClassW(&windowClass);  // the second window of the program finds it registered
    HWND const window = CreateWindowExW(0, kListenerClass, L"", WS_OVERLAPPEDWINDOW, 0, 0, 0, 0, nullptr, nullptr,
                                        windowClass.hInstance, nullptr);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    made.set_value(window);
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        DispatchMessageW(&message);
    }
}

LRESULT EmulatorWorld::Send(EmulatorMessage message, WPARAM wParam, LPARAM lParam) {
    return SendMessageW(FindEmulator(), MessageNumber(message), wParam, lParam);
}

void EmulatorWorld::Register(const ListenerWindow& listener) {
    const auto handle = reinterpret_cast<LPARAM>(listener.Handle());
    ASSERT_TRUE(PostMessageW(FindEmulator(), MessageNumber(EmulatorMessage::kStateRegist), 0, handle));
    ASSERT_TRUE(emulator_.WaitUntil(
        [handle](const EmulatorState& state) { return state.listener == static_cast<std::uint64_t>(handle); }));
}

bool EmulatorWorld::ScannerIsHeld() {
    const SharedState<HoneywellState>::Access scanner(scanner_);
    return scanner && scanner->heldByEmulator != 0;
}

std::vector<EmulatorCall> EmulatorWorld::Calls() {
    const EmulatorState state = emulator_.Read();
    std::vector<EmulatorCall> calls;
    for (std::uint64_t number = state.log.First(); number < state.log.count; ++number) {
        calls.push_back(state.log.At(number));
    }
    return calls;
}

}  // namespace quarlin::sim::testing

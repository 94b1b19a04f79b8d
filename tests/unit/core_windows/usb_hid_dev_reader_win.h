// SPDX-License-Identifier: Apache-2.0
// The HID device object alone, on a simulated card reader.
#pragma once

#include "msr/reader_path.h"
#include "msr/usb_hid_dev_win.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "card/test_reader_win.h"
#include "support/import_hook_win.h"

namespace quarlin::msr {

// A hook of this program, which the object under test is part of.
class OwnHook : public test::ImportHook {
  public:
    template <typename Function>
    OwnHook(const char* dll, const char* function, Function* replacement)
        : ImportHook(dll, function, replacement, GetModuleHandleW(nullptr)) {}
};

// Keeps what it receives.
class KeepingListener : public IUsbHidDevListener {
  public:
    std::vector<test::Report> reports;

  private:
    void OnInputReport(const std::vector<std::uint8_t>& report) override { reports.push_back(report); }
    void AroundInputReport(const std::function<void()>& deliver) override { deliver(); }
};

// The path of the reader that is plugged in; empty when there is none.
inline std::wstring ReaderPath() {
    CUsbHidDev lister;
    std::vector<std::wstring> paths;
    lister.EnumerateDevicePaths(paths);
    const auto found = std::ranges::find_if(paths, &IsMagneSafePath);
    return found != paths.end() ? *found : std::wstring();
}

// A reader that is plugged in. The object is closed and has a listener.
class UsbHidDevReader : public ::testing::Test {
  protected:
    static constexpr std::uint32_t kFeatureLength = 25;

    void SetUp() override { ASSERT_TRUE(device_.SetListener(&listener_)); }
    void TearDown() override { EXPECT_TRUE(device_.Close()); }

    test::CardReaderTurn turn_;
    test::TestReader reader_;
    KeepingListener listener_;
    CUsbHidDev device_;
};

// The same, and open.
class OpenUsbHidDev : public UsbHidDevReader {
  protected:
    void SetUp() override {
        UsbHidDevReader::SetUp();
        ASSERT_TRUE(device_.Open(ReaderPath()));
    }
};

}  // namespace quarlin::msr

// SPDX-License-Identifier: Apache-2.0
// The sound after a scan.
#include <windows.h>

#include <mmsystem.h>
#include <array>
#include <stdexcept>
#include <string>
#include <vector>

#include "barcode/intermec_test_win.h"
#include "barcode_support/sound_watch_win.h"
#include "support/system_text_win.h"

namespace quarlin::test {
namespace {

constexpr const char* kNoFile = "Specified File does not exist";
constexpr std::size_t kLongestPath = 259;

std::wstring WindowsFolder() {
    std::array<wchar_t, MAX_PATH> folder{};
    GetWindowsDirectoryW(folder.data(), MAX_PATH);
    return folder.data();
}

// A file of this test's own.
class SoundFile {
  public:
    explicit SoundFile(const std::wstring& name = L"read") {
        std::array<wchar_t, MAX_PATH + 1> folder{};
        GetTempPathW(MAX_PATH, folder.data());
        path_ = folder.data() + (L"quarlin-" + std::to_wstring(GetCurrentProcessId()) + L"-" + name + L".wav");
        file_.Reset(
            CreateFileW(path_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE, nullptr));
        if (!file_.Valid()) {
            throw std::runtime_error("no file for a sound");
        }
    }
    const std::wstring& Path() const { return path_; }

  private:
    std::wstring path_;
    UniqueHandle file_;
};

class IntermecSound : public EnabledIntermec {
  protected:
    void Scan(const char* text = "text") {
        const std::size_t count = log_.Count();
        machine_.ScanIntermec(text);
        log_.AwaitCount(count + 1);
        log_.AwaitQuiet();
    }
    static int IsOn() {
        unsigned char enabled = 77;
        EXPECT_SUCCESS(QLBCR_IsSoundEnabled(&enabled));
        return enabled;
    }

    SoundWatch sounds_;
};

TEST_F(IntermecSound, IsOffAtFirst) {
    EXPECT_EQ(IsOn(), 0);
    Scan();
    EXPECT_EQ(sounds_.Paths(), Texts{});
}

TEST_F(IntermecSound, IsTheSystemsChimesAtFirst) {
    EXPECT_SUCCESS(QLBCR_SetSoundEnabled(1));
    EXPECT_EQ(sounds_.Paths(), Texts{});
    Scan();
    const auto sounds = sounds_.Sounds();
    ASSERT_EQ(sounds.size(), 1U);
    EXPECT_EQ(sounds[0].path, ToUtf8(WindowsFolder() + L"\\media\\chimes.wav"));
    EXPECT_FALSE(sounds[0].fromModule);
    EXPECT_EQ(sounds[0].flags, DWORD{SND_FILENAME | SND_ASYNC | SND_NODEFAULT});
    EXPECT_EQ(sounds[0].thread, log_.Scans()[0].thread);
    Scan();
    EXPECT_EQ(sounds_.Paths().size(), 2U);
    EXPECT_EQ(Engine().TakeTexts(), Texts(2, "GetBarcodeDataEx"));
}

TEST_F(IntermecSound, IsSwitched) {
    for (const unsigned int enable : {1U, 2U, 256U, 0x80000000U, 0xFFFFFFFFU}) {
        EXPECT_SUCCESS(QLBCR_SetSoundEnabled(enable));
        EXPECT_EQ(IsOn(), 1) << enable;
    }
    EXPECT_SUCCESS(QLBCR_SetSoundEnabled(0));
    EXPECT_EQ(IsOn(), 0);
    Scan();
    EXPECT_EQ(sounds_.Paths(), Texts{});
}

TEST_F(IntermecSound, IsTheFileThatWasChosen) {
    const SoundFile file(L"\u97f3 sound");
    EXPECT_SUCCESS(QLBCR_SetReadSuccessSoundFile(file.Path().c_str()));
    Scan();
    EXPECT_EQ(sounds_.Paths(), Texts{}) << "choosing does not switch it on";
    EXPECT_SUCCESS(QLBCR_SetSoundEnabled(1));
    Scan();
    EXPECT_EQ(sounds_.Paths(), Texts{ToUtf8(file.Path())});
}

TEST_F(IntermecSound, StaysAsItIsWhenTheFileIsNotThere) {
    const SoundFile file;
    EXPECT_SUCCESS(QLBCR_SetSoundEnabled(1));
    EXPECT_SUCCESS(QLBCR_SetReadSuccessSoundFile(file.Path().c_str()));
    const std::wstring beside = file.Path() + L".none";
    for (const wchar_t* const path : {beside.c_str(), L"", L"Z:\\no\\such\\file.wav", L"::", L"*", L"?.wav"}) {
        EXPECT_FAILURE(QLBCR_SetReadSuccessSoundFile(path), QLERR_INVALID_ARGUMENT, kNoFile);
    }
    EXPECT_FAILURE(QLBCR_SetReadSuccessSoundFile(nullptr), QLERR_INVALID_ARGUMENT, kNoFile);
    Scan();
    EXPECT_EQ(sounds_.Paths(), Texts{ToUtf8(file.Path())});
}

// The same file by a path of a certain length.
std::wstring Padded(const std::wstring& path, std::size_t length) {
    const std::size_t folder = path.rfind(L'\\');
    std::wstring padded = path;
    if ((length - path.size()) % 2 != 0) {
        padded.insert(folder, L"\\");
    }
    while (padded.size() < length) {
        padded.insert(folder, L"\\.");
    }
    return padded;
}

TEST_F(IntermecSound, MayHaveTheLongestPathAndNoLongerOne) {
    const SoundFile file;
    EXPECT_SUCCESS(QLBCR_SetSoundEnabled(1));
    const std::wstring longest = Padded(file.Path(), kLongestPath);
    ASSERT_EQ(longest.size(), kLongestPath);
    EXPECT_SUCCESS(QLBCR_SetReadSuccessSoundFile(longest.c_str()));
    for (const std::size_t length : {kLongestPath + 1, kLongestPath + 2, std::size_t{1000}, std::size_t{40000}}) {
        EXPECT_FAILURE(QLBCR_SetReadSuccessSoundFile(Padded(file.Path(), length).c_str()), QLERR_INVALID_ARGUMENT,
                       kNoFile)
            << length;
    }
    // One part that is too long alone.
    const std::wstring name(300, L'n');
    EXPECT_FAILURE(QLBCR_SetReadSuccessSoundFile((L"C:\\" + name).c_str()), QLERR_INVALID_ARGUMENT, kNoFile);
    EXPECT_FAILURE(QLBCR_SetReadSuccessSoundFile((L"C:\\a." + name).c_str()), QLERR_INVALID_ARGUMENT, kNoFile);
    Scan();
    EXPECT_EQ(sounds_.Paths(), Texts{ToUtf8(longest)});
}

TEST_F(IntermecSound, ComesBeforeTheCallbackAndThatBeforeDecodingEnds) {
    constexpr const char* kOff = "ControlCommand 20 40 00";
    Texts steps;
    const auto note = [&](const char* step) {
        steps.emplace_back(step);
        steps.push_back(Engine().Peek().back());
    };
    EXPECT_SUCCESS(QLBCR_SetSoundEnabled(1));
    EXPECT_SUCCESS(QLBCR_StartScanning());
    sounds_.WhenPlayed([&] { note("sound"); });
    log_.DoInside([&](const QLBCR_BARCODE_DATA&) { note("callback"); });
    machine_.ScanIntermec("text");
    Engine().AwaitCalls(kOff);
    EXPECT_EQ(steps, (Texts{"sound", "GetBarcodeDataEx", "callback", "GetBarcodeDataEx"}));
    sounds_.WhenPlayed({});
}

TEST_F(IntermecSound, DoesNotMatterToTheCallback) {
    EXPECT_SUCCESS(QLBCR_SetSoundEnabled(1));
    sounds_.Answer(false);
    Scan();
    EXPECT_EQ(log_.Texts(), Texts{"text"});
    sounds_.Answer(true);
}

TEST_F(IntermecSound, IsNotHeardForAScanWithoutText) {
    EXPECT_SUCCESS(QLBCR_SetSoundEnabled(1));
    machine_.ScanIntermec("");
    Scan();
    EXPECT_EQ(sounds_.Paths().size(), 1U);
}

TEST_F(IntermecSound, IsHeardWithoutACallback) {
    ASSERT_SUCCESS(QLBCR_Disable());
    ASSERT_SUCCESS(QLBCR_Uninitialize());
    ASSERT_SUCCESS(QLBCR_Initialize());
    ASSERT_SUCCESS(QLBCR_Enable());
    EXPECT_SUCCESS(QLBCR_SetSoundEnabled(1));
    machine_.ScanIntermec("text");
    EXPECT_TRUE(WaitUntil([&] { return sounds_.Paths().size() == 1; }));
    EXPECT_EQ(log_.Count(), 0U);
}

TEST_F(IntermecSound, OutlivesDisablingAndEndsWithInitialising) {
    const SoundFile file;
    EXPECT_SUCCESS(QLBCR_SetReadSuccessSoundFile(file.Path().c_str()));
    EXPECT_SUCCESS(QLBCR_SetSoundEnabled(1));
    ASSERT_SUCCESS(QLBCR_Disable());
    ASSERT_SUCCESS(QLBCR_Enable());
    EXPECT_EQ(IsOn(), 1);
    Scan();
    EXPECT_EQ(sounds_.Paths(), Texts{ToUtf8(file.Path())});
    ASSERT_SUCCESS(QLBCR_Disable());
    ASSERT_SUCCESS(QLBCR_Uninitialize());
    Enable();
    EXPECT_EQ(IsOn(), 0);
    EXPECT_SUCCESS(QLBCR_SetSoundEnabled(1));
    sounds_.Clear();
    Scan();
    EXPECT_EQ(sounds_.Paths(), Texts{ToUtf8(WindowsFolder() + L"\\media\\chimes.wav")});
}

}  // namespace
}  // namespace quarlin::test

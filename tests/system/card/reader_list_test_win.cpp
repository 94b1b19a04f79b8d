// SPDX-License-Identifier: Apache-2.0
// The list of readers: what is told of each, and how much of it fits.
#include <quarlin/card_reader.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cwchar>
#include <string>
#include <vector>

#include "card/card_session_win.h"
#include "support/import_hook_win.h"
#include "support/last_error.h"
#include "support/resource_count_win.h"
#include "support/system_text_win.h"

namespace quarlin::test {
namespace {

constexpr const char* kTooSmall = "readers buffer is too small.";

// The only reader that is listed.
MagStripeReaderInfo TheReader() {
    const std::vector<MagStripeReaderInfo> readers = ListReaders();
    EXPECT_EQ(readers.size(), 1U);
    return readers.empty() ? MagStripeReaderInfo{} : readers[0];
}

TEST(CardReaderList, IsEmptyWithoutReaders) {
    const CardReaderTurn turn;
    const CardSession session;
    MagStripeReaderInfo reader{};
    reader.index = 77;
    for (int room : {1, 0, -5}) {
        EXPECT_SUCCESS(QLMSR_GetMagStripeDevices(&reader, &room));
        EXPECT_EQ(room, 0);
    }
    EXPECT_EQ(reader.index, 77);
}

TEST(CardReaderList, TellsEverythingOfAReader) {
    const CardReaderTurn turn;
    const CardSession session;
    ReaderSettings settings;
    settings.serial = "B30A5C7";
    settings.softwareId = "21088812D01";
    settings.securityLevel = 3;
    const TestReader reader(settings);
    std::array<MagStripeReaderInfo, 3> list{};
    list[1].index = 77;
    int count = 3;
    ASSERT_SUCCESS(QLMSR_GetMagStripeDevices(list.data(), &count));
    ASSERT_EQ(count, 1);
    EXPECT_EQ(list[0].index, 0);
    EXPECT_STREQ(list[0].name, L"MAGTEK(USB)");
    EXPECT_STREQ(list[0].serialNumber, L"B30A5C7");
    EXPECT_STREQ(list[0].softwareId, L"21088812D01");
    EXPECT_EQ(list[0].encryptionEnabled, 1);
    EXPECT_EQ(list[0].vendor, MAG_STRIPE_VENDOR_MAGTEK);
    // Entries that are not needed are not written to.
    EXPECT_EQ(list[1].index, 77);
}

TEST(CardReaderList, HasBytesFrom0x80OnAsCharactersOfTheirNumber) {
    const CardReaderTurn turn;
    const CardSession session;
    ReaderSettings settings;
    settings.serial = "\x01\x7F\x80\xE4\xFF";
    settings.softwareId = "\xFF\x80";
    const TestReader reader(settings);
    const MagStripeReaderInfo info = TheReader();
    EXPECT_EQ(std::wstring(info.serialNumber), std::wstring(L"\x01\x7F\x80\xE4\xFF"));
    EXPECT_EQ(std::wstring(info.softwareId), std::wstring(L"\xFF\x80"));
}

TEST(CardReaderList, ReadsTextsUpToTheirFirstZero) {
    const CardReaderTurn turn;
    const CardSession session;
    ReaderSettings settings;
    settings.serial = std::string("AB\0CD", 5);
    settings.softwareId = "";
    const TestReader reader(settings);
    const MagStripeReaderInfo info = TheReader();
    EXPECT_STREQ(info.serialNumber, L"AB");
    EXPECT_STREQ(info.softwareId, L"");
}

TEST(CardReaderList, CutsTextsTo149CharactersAndSucceeds) {
    const CardReaderTurn turn;
    const CardSession session;
    ReaderSettings settings;
    settings.featureReportLength = 256;
    for (int i = 0; i < 200; ++i) {
        settings.serial += static_cast<char>('A' + i % 26);
    }
    settings.softwareId = settings.serial.substr(0, 149);
    const TestReader reader(settings);
    const MagStripeReaderInfo info = TheReader();
    EXPECT_EQ(ToUtf8(info.serialNumber), settings.serial.substr(0, 149));
    EXPECT_EQ(ToUtf8(info.softwareId), settings.softwareId);
    EXPECT_EQ(info.encryptionEnabled, 1);
}

// The text fills the report, so that no zero byte ends it.
TEST(CardReaderList, TakesATextThatFillsTheReport) {
    const CardReaderTurn turn;
    const CardSession session;
    ReaderSettings settings;
    settings.featureReportLength = 25;
    settings.serial = "0123456789ABCDEFGHIJKL";
    const TestReader reader(settings);
    EXPECT_STREQ(TheReader().serialNumber, L"0123456789ABCDEFGHIJKL");
}

TEST(CardReaderList, TellsEncryptionBySecurityLevelsFrom3On) {
    const CardReaderTurn turn;
    for (const auto& [level, encrypts] : {std::pair{0, 0}, {2, 0}, {3, 1}, {4, 1}, {127, 1}, {128, 1}, {255, 1}}) {
        SCOPED_TRACE(level);
        const CardSession session;
        ReaderSettings settings;
        settings.securityLevel = static_cast<std::uint8_t>(level);
        const TestReader reader(settings);
        EXPECT_EQ(TheReader().encryptionEnabled, encrypts);
    }
}

TEST(CardReaderList, IsRefusedWithItsLengthWhenItDoesNotFit) {
    const CardReaderTurn turn;
    const CardSession session;
    const TestReader one(WithSerial("ONE"));
    const TestReader two(WithSerial("TWO"));
    std::array<MagStripeReaderInfo, 2> list{};
    list[0].index = 77;
    for (const int room : {1, 0, -1}) {
        int count = room;
        EXPECT_FAILURE(QLMSR_GetMagStripeDevices(list.data(), &count), QLERR_INVALID_ARGUMENT, kTooSmall);
        EXPECT_EQ(count, 2);
        EXPECT_EQ(list[0].index, 77);
    }
    // The readers are known all the same.
    EXPECT_SUCCESS(QLMSR_SelectDevice(1));
    EXPECT_FAILURE(QLMSR_SelectDevice(2), QLERR_INVALID_ARGUMENT, "Not valid device index.");
    int count = 2;
    EXPECT_SUCCESS(QLMSR_GetMagStripeDevices(list.data(), &count));
    EXPECT_EQ(list[0].index, 0);
    EXPECT_EQ(list[1].index, 1);
}

TEST(CardReaderList, LooksAgainAtEachCall) {
    const CardReaderTurn turn;
    const CardSession session;
    // Initialising alone finds nobody.
    TestReader reader;
    EXPECT_FAILURE(QLMSR_SelectDevice(0), QLERR_INVALID_ARGUMENT, "Not valid device index.");
    EXPECT_EQ(ListReaders().size(), 1U);
    EXPECT_SUCCESS(QLMSR_SelectDevice(0));
    reader.Unplug();
    EXPECT_EQ(ListReaders().size(), 0U);
    EXPECT_FAILURE(QLMSR_SelectDevice(0), QLERR_INVALID_ARGUMENT, "Not valid device index.");
}

// What .NET callers get: a buffer of their own, in the runtime of the system.
class DotNetList {
  public:
    DotNetList(QLerr* result, int* count) : readers_(QLMSR_GetMagStripeDevices_DotNET(result, count)) {}
    DotNetList(const DotNetList&) = delete;
    DotNetList& operator=(const DotNetList&) = delete;
    ~DotNetList() { SystemFunction<void(void*)>("msvcrt.dll", "free")(readers_); }

    const MagStripeReaderInfo* operator->() const { return readers_; }
    const MagStripeReaderInfo& operator[](std::size_t i) const { return readers_[i]; }
    const MagStripeReaderInfo* Get() const { return readers_; }
    std::size_t Size() const { return SystemFunction<std::size_t(void*)>("msvcrt.dll", "_msize")(readers_); }
    bool IsBlank() const {
        const auto* const bytes = reinterpret_cast<const std::uint8_t*>(readers_);
        return std::all_of(bytes, bytes + Size(), [](std::uint8_t byte) { return byte == 0; });
    }

  private:
    MagStripeReaderInfo* readers_;
};

TEST(CardDotNetList, HasThreeEntriesOfWhichTheCountIsUsed) {
    const CardReaderTurn turn;
    const CardSession session;
    const TestReader reader;
    ASSERT_EQ(QLMSR_IsEnabled(nullptr), QLERR_INVALID_ARGUMENT);
    QLerr result = QLERR_IO_ERROR;
    int count = 77;
    const DotNetList list(&result, &count);
    EXPECT_SUCCESS(result);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(list.Size(), 2736U);
    EXPECT_STREQ(list->name, L"MAGTEK(USB)");
    EXPECT_STREQ(list->serialNumber, L"B30A5C7");
    EXPECT_STREQ(list[1].name, L"");
}

TEST(CardDotNetList, IsReturnedWithoutManagerToo) {
    QLerr result = QLERR_OK;
    int count = 77;
    const DotNetList list(&result, &count);
    EXPECT_FAILURE(result, QLERR_INVALID_STATE, "no exist IQlMagStripeMgr instance.");
    EXPECT_EQ(count, 3);
    EXPECT_EQ(list.Size(), 2736U);
    EXPECT_TRUE(list.IsBlank());
}

TEST(CardDotNetList, WithNullLeavesAnErrorAndReturnsABuffer) {
    const CardReaderTurn turn;
    const CardSession session;
    const TestReader reader;
    constexpr const char* kNull = "1st or 2nd parameter is invalid.(NULL)";
    QLerr result = QLERR_OK;
    int count = 77;
    const DotNetList withoutResult(nullptr, &count);
    EXPECT_FAILURE(QLERR_INVALID_ARGUMENT, QLERR_INVALID_ARGUMENT, kNull);
    EXPECT_EQ(withoutResult.Size(), 2736U);
    const DotNetList withoutCount(&result, nullptr);
    EXPECT_FAILURE(result, QLERR_INVALID_ARGUMENT, kNull);
    EXPECT_EQ(withoutCount.Size(), 2736U);
    const DotNetList withoutBoth(nullptr, nullptr);
    EXPECT_FAILURE(QLERR_INVALID_ARGUMENT, QLERR_INVALID_ARGUMENT, kNull);
    EXPECT_EQ(withoutBoth.Size(), 2736U);
}

TEST(CardDotNetList, TellsHowManyThereAreWhenThreeAreTooFew) {
    const CardReaderTurn turn;
    const CardSession session;
    const std::array<TestReader, 4> readers;
    QLerr result = QLERR_OK;
    int count = 77;
    const DotNetList list(&result, &count);
    EXPECT_FAILURE(result, QLERR_INVALID_ARGUMENT, kTooSmall);
    EXPECT_EQ(count, 4);
    EXPECT_TRUE(list.IsBlank());
}

TEST(CardDotNetList, IsReleasedByTheSystemsRuntime) {
    const CardReaderTurn turn;
    const CardSession session;
    const auto round = [] {
        QLerr result = QLERR_OK;
        int count = 0;
        const DotNetList list(&result, &count);
        EXPECT_EQ(result, QLERR_OK);
    };
    round();
    CountResources();
    const ResourceCount before = CountResources();
    for (int i = 0; i < 20; ++i) {
        round();
    }
    EXPECT_EQ(CountResources(), before);
}

void* NoMemory(std::size_t, std::size_t) {
    return nullptr;
}

TEST(CardDotNetList, IsNullOnlyWhenMemoryIsShort) {
    const CardSession session;
    QLerr result = QLERR_OK;
    int count = 77;
    const MagStripeReaderInfo* list = nullptr;
    {
        const ImportHook hook("msvcrt.dll", "calloc", &NoMemory);
        list = QLMSR_GetMagStripeDevices_DotNET(&result, &count);
    }
    EXPECT_EQ(list, nullptr);
    EXPECT_FAILURE(result, QLERR_INTERNAL_ERROR, "memory allocate error.");
    EXPECT_EQ(count, 3);
}

}  // namespace
}  // namespace quarlin::test

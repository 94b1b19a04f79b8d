// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <windows.h>

namespace {

class ProviderSettings {
  public:
    explicit ProviderSettings(const char* settings) { SetEnvironmentVariableA("QLSIM_PORT_PROVIDER", settings); }
    ~ProviderSettings() { SetEnvironmentVariableA("QLSIM_PORT_PROVIDER", nullptr); }
    ProviderSettings(const ProviderSettings&) = delete;
    ProviderSettings& operator=(const ProviderSettings&) = delete;
};

struct Answer {
    DWORD error;
    DWORD subtype;
};

Answer Ask(const char* port) {
    COMMCONFIG config = {};
    config.dwSize = sizeof(config);
    config.wVersion = 1;
    DWORD size = sizeof(config);
    SetLastError(ERROR_SUCCESS);
    const BOOL known = GetDefaultCommConfigA(port, &config, &size);
    return {known ? ERROR_SUCCESS : GetLastError(), config.dwProviderSubType};
}

struct Row {
    const char* settings;
    const char* port;
    Answer expected;
};

void PrintTo(const Row& row, std::ostream* out) {
    *out << row.port << " with " << (row.settings == nullptr ? "nothing set" : row.settings);
}

class PortProvider : public testing::TestWithParam<Row> {};

TEST_P(PortProvider, Answers) {
    const ProviderSettings settings(GetParam().settings);
    const Answer answer = Ask(GetParam().port);
    EXPECT_EQ(answer.error, GetParam().expected.error);
    EXPECT_EQ(answer.subtype, GetParam().expected.subtype);
}

constexpr Answer kRs232 = {ERROR_SUCCESS, PST_RS232};
constexpr Answer kUnknown = {ERROR_INVALID_PARAMETER, 0};
constexpr Answer kMistake = {ERROR_BAD_ENVIRONMENT, 0};

INSTANTIATE_TEST_SUITE_P(
    Table, PortProvider,
    testing::Values(Row{nullptr, "COM1", kRs232}, Row{nullptr, "COM2", kRs232}, Row{nullptr, "COM3", kRs232},
                    Row{nullptr, "COM4", kRs232}, Row{nullptr, "COM5", kRs232}, Row{nullptr, "COM6", kRs232},
                    Row{nullptr, "COM7", kRs232}, Row{nullptr, "COM8", kRs232}, Row{nullptr, "COM9", kUnknown},
                    Row{nullptr, "COM12", kUnknown}, Row{nullptr, "LPT1", kUnknown}, Row{nullptr, "", kUnknown},
                    Row{"COM3=subtype:6", "COM3", {ERROR_SUCCESS, PST_MODEM}}, Row{"COM3=subtype:6", "COM4", kRs232},
                    Row{"COM5=error:5", "COM5", {ERROR_ACCESS_DENIED, 0}},
                    Row{"COM5=error:0xE0001234", "COM5", {0xE0001234, 0}},
                    Row{"COM9=rs232;COM255=rs232", "COM9", kRs232}, Row{"COM9=rs232;COM255=rs232", "COM255", kRs232},
                    Row{"COM9=rs232;COM255=rs232", "COM25", kUnknown}, Row{"com9=rs232", "COM9", kRs232},
                    Row{"COM3=subtype:six", "COM3", kMistake}, Row{"COM3=", "COM3", kMistake},
                    Row{"COM3=error:0x1FFFFFFFF", "COM3", kMistake}, Row{"COM3=rs232x", "COM3", kMistake}));

TEST(PortProvider, FillsASerialPortsDefaults) {
    COMMCONFIG config = {};
    DWORD size = sizeof(config);
    ASSERT_TRUE(GetDefaultCommConfigA("COM3", &config, &size));
    EXPECT_EQ(size, sizeof(COMMCONFIG));
    EXPECT_EQ(config.dwSize, sizeof(COMMCONFIG));
    EXPECT_EQ(config.dcb.DCBlength, sizeof(DCB));
    EXPECT_EQ(config.dcb.BaudRate, 9600u);
    EXPECT_EQ(config.dcb.ByteSize, 8);
    EXPECT_EQ(config.dcb.Parity, NOPARITY);
    EXPECT_EQ(config.dcb.StopBits, ONESTOPBIT);
}

TEST(PortProvider, SaysHowMuchRoomItNeeds) {
    COMMCONFIG config = {};
    DWORD size = sizeof(config) - 1;
    EXPECT_FALSE(GetDefaultCommConfigA("COM3", &config, &size));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(size, sizeof(COMMCONFIG));
}

// The heaps' blocks in use, all heaps of the process together.
size_t CountHeapBlocks() {
    HANDLE heaps[64];
    const DWORD count = GetProcessHeaps(64, heaps);
    size_t blocks = 0;
    for (DWORD i = 0; i < count && i < 64; ++i) {
        PROCESS_HEAP_ENTRY entry = {};
        while (HeapWalk(heaps[i], &entry)) {
            blocks += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? 1u : 0u;
        }
    }
    return blocks;
}

TEST(PortProvider, LeavesNoHeapBlockBehindHoweverOftenItIsAsked) {
    const ProviderSettings settings("COM3=subtype:6");
    // Loaded for good, as in nearly every program: Wine's own leaves a block behind each time it is unloaded.
    ASSERT_NE(LoadLibraryW(L"advapi32.dll"), nullptr);
    const auto askOften = [] {
        for (int i = 0; i < 250; ++i) {
            Ask("COM3");
            Ask("COM4");
        }
    };
    askOften();
    const size_t before = CountHeapBlocks();
    askOften();
    // What Windows itself keeps may differ by a block or two; a leak would show as 500.
    EXPECT_NEAR(static_cast<double>(CountHeapBlocks()), static_cast<double>(before), 10.0);
}

}  // namespace

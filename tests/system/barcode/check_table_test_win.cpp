// SPDX-License-Identifier: Apache-2.0
// What every function refuses, in each state, with which code and which words; and that nothing reaches the engine
// then.
#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "barcode/intermec_test_win.h"
#include "support/machine_state_win.h"

namespace quarlin::test {
namespace {

struct Outcome {
    QLerr code = QLERR_OK;
    const char* text = "";
};

constexpr Outcome kFine{};
constexpr Outcome Bad(const char* text) {
    return {QLERR_INVALID_ARGUMENT, text};
}
constexpr Outcome TooSmall() {
    return {QLERR_BUFFER_OVERFLOW, "Buffer size too small"};
}
constexpr Outcome State(const char* text) {
    return {QLERR_INVALID_STATE, text};
}
constexpr Outcome kNoDevice = State(kNotInitialized);
constexpr Outcome kOff = State(kNotEnabled);

// What a function answers in states 0, 1 and 2.
using Outcomes = std::array<Outcome, 3>;

constexpr Outcomes Always(Outcome outcome) {
    return {outcome, outcome, outcome};
}
// Of a function that needs a device, whatever its state.
constexpr Outcomes WhenInitialized(Outcome outcome = kFine) {
    return {kNoDevice, outcome, outcome};
}
constexpr Outcomes WhenEnabled(Outcome outcome = kFine) {
    return {kNoDevice, kOff, outcome};
}

struct Row {
    const char* name;
    std::function<QLerr()> call;
    Outcomes outcomes;
};

std::ostream& operator<<(std::ostream& out, const Row& row) {
    return out << row.name;
}

std::string NameOfRow(const ::testing::TestParamInfo<Row>& info) {
    return info.param.name;
}

// What the calls are given where a pointer is not null. Filled anew for each, so that writing into it shows.
struct Room {
    std::array<QLBCR_DEVICE_INFO, 2> devices;
    int count;
    unsigned int number;
    unsigned char flag;
    int start;
    int end;
    std::array<char, 256> text;
    std::array<char, 256> other;
};

constexpr char kFiller = '#';
Room room;

void FillRoom() {
    std::memset(static_cast<void*>(&room), kFiller, sizeof(room));
}

bool IsRoomUntouched() {
    const auto* const bytes = reinterpret_cast<const char*>(&room);
    return std::all_of(bytes, bytes + sizeof(room), [](char byte) { return byte == kFiller; });
}

constexpr Outcome kNullText = Bad("OutStr cannot be NULL if OutStrSize is non-zero");

// Counts and sizes that a call is given are put into the room last, and taken out again when it has failed.
template <typename Number, typename Call>
QLerr With(Number& place, Number number, Call&& call) {
    const Number filler = place;
    place = number;
    const QLerr result = call();
    if (result != QLERR_OK && place == number) {
        place = filler;
    }
    return result;
}

const std::vector<Row> kRefusals = {
    {"GetBarcodeDevicesNull", [] { return QLBCR_GetBarcodeDevices(room.devices.data(), nullptr); },
     Always(Bad("pNumDevices cannot be NULL"))},
    {"GetBarcodeDevicesAllNull", [] { return QLBCR_GetBarcodeDevices(nullptr, nullptr); },
     Always(Bad("pNumDevices cannot be NULL"))},
    {"GetBarcodeDevicesLessThanNone",
     [] { return With(room.count, -1, [] { return QLBCR_GetBarcodeDevices(room.devices.data(), &room.count); }); },
     Always(TooSmall())},
    {"GetBarcodeDevicesLessThanNoneOfNull",
     [] { return With(room.count, INT_MIN, [] { return QLBCR_GetBarcodeDevices(nullptr, &room.count); }); },
     Always(TooSmall())},
    {"SelectDeviceBelow", [] { return QLBCR_SelectDevice(-1); }, Always(Bad("Given device index is out of range"))},
    {"SelectDeviceBeyond", [] { return QLBCR_SelectDevice(1); }, Always(Bad("Given device index is out of range"))},
    {"SelectDeviceFarBeyond", [] { return QLBCR_SelectDevice(INT_MAX); },
     Always(Bad("Given device index is out of range"))},
    {"Uninitialize",
     [] { return QLBCR_Uninitialize(); },
     {State("The device is already un-initialized"), kFine,
      State("The device is not disabled. Please disable before further use")}},
    {"Enable", [] { return QLBCR_Enable(); }, {kNoDevice, kFine, State("The device is already enabled")}},
    {"Disable", [] { return QLBCR_Disable(); }, {kNoDevice, State("The device is already disabled"), kFine}},
    {"IsEnabledNull", [] { return QLBCR_IsEnabled(nullptr); }, Always(Bad("pEnable cannot be NULL"))},
    {"IsEnabled", [] { return QLBCR_IsEnabled(&room.number); }, WhenInitialized()},
    {"GetDeviceTypeNull", [] { return QLBCR_GetDeviceType(nullptr); }, Always(Bad("pType cannot be NULL"))},
    {"GetDeviceType", [] { return QLBCR_GetDeviceType(&room.number); }, WhenInitialized()},
    {"GetDeviceNameAllNull", [] { return QLBCR_GetDeviceName(nullptr, nullptr); },
     WhenInitialized(Bad("dstSize cannot be NULL"))},
    {"GetDeviceNameSizeNull", [] { return QLBCR_GetDeviceName(room.text.data(), nullptr); },
     WhenInitialized(Bad("dstSize cannot be NULL"))},
    {"GetDeviceNameBufferNull",
     [] { return With(room.number, 1U, [] { return QLBCR_GetDeviceName(nullptr, &room.number); }); },
     WhenInitialized(kNullText)},
    {"GetDeviceNameNoRoom",
     [] { return With(room.number, 0U, [] { return QLBCR_GetDeviceName(room.text.data(), &room.number); }); },
     WhenInitialized(TooSmall())},
    {"GetDeviceNameOneTooFew",
     [] { return With(room.number, 18U, [] { return QLBCR_GetDeviceName(room.text.data(), &room.number); }); },
     WhenInitialized(TooSmall())},
    {"FirmwareAllNull", [] { return QLBCR_GetDeviceFirmwareVersion(nullptr, nullptr); },
     WhenEnabled(Bad("dstSize cannot be NULL"))},
    {"FirmwareSizeNull", [] { return QLBCR_GetDeviceFirmwareVersion(room.text.data(), nullptr); },
     WhenEnabled(Bad("dstSize cannot be NULL"))},
    {"FirmwareBufferNull",
     [] { return With(room.number, 9U, [] { return QLBCR_GetDeviceFirmwareVersion(nullptr, &room.number); }); },
     WhenEnabled(kNullText)},
    {"FirmwareNoRoom",
     [] {
         return With(room.number, 0U, [] { return QLBCR_GetDeviceFirmwareVersion(room.text.data(), &room.number); });
     },
     WhenEnabled(TooSmall())},
    {"SetCallbackNull", [] { return QLBCR_SetCallback(nullptr); }, Always(Bad("Callback cannot be NULL"))},
    {"SetCallback", [] { return QLBCR_SetCallback(ScanLog::Callback()); }, WhenEnabled()},
    {"StartScanning", [] { return QLBCR_StartScanning(); }, WhenEnabled(State("CallBack is not set."))},
    {"StopScanning", [] { return QLBCR_StopScanning(); }, WhenEnabled(State("CallBack is not set."))},
    {"EnableSymbologyNull", [] { return QLBCR_EnableSymbology(1, nullptr); }, Always(Bad("Symbology cannot be NULL"))},
    {"EnableSymbologyEmpty", [] { return QLBCR_EnableSymbology(1, L""); },
     WhenEnabled(Bad("The argument of symbology is invalid"))},
    {"EnableSymbologyUnknown", [] { return QLBCR_EnableSymbology(0, L"Code 39"); },
     WhenEnabled(Bad("The argument of symbology is invalid"))},
    {"EnableSymbology", [] { return QLBCR_EnableSymbology(1, L"Code39"); }, WhenEnabled()},
    {"EnableSymbologiesBeyond", [] { return QLBCR_EnableSymbologies(1, 47); },
     WhenEnabled({QLERR_INTERNAL_ERROR, "Symbology could not enabled/disabled"})},
    {"EnableSymbologiesNegative", [] { return QLBCR_EnableSymbologies(0, UINT_MAX); },
     WhenEnabled({QLERR_INTERNAL_ERROR, "Symbology could not enabled/disabled"})},
    {"EnableSymbologies", [] { return QLBCR_EnableSymbologies(1, 0); }, WhenEnabled()},
    {"SetTriggerMode", [] { return QLBCR_SetTriggerMode(1); }, {kNoDevice, State("Not connected."), kFine}},
    {"SetHardwareTriggerEnabled", [] { return QLBCR_SetHardwareTriggerEnabled(1); }, WhenEnabled()},
    {"IsHardwareTriggerEnabledNull", [] { return QLBCR_IsHardwareTriggerEnabled(nullptr); },
     Always(Bad("pEnable cannot be NULL"))},
    {"IsHardwareTriggerEnabled", [] { return QLBCR_IsHardwareTriggerEnabled(&room.flag); }, WhenEnabled()},
    {"SetSoundEnabled", [] { return QLBCR_SetSoundEnabled(1); }, WhenEnabled()},
    {"IsSoundEnabledNull", [] { return QLBCR_IsSoundEnabled(nullptr); }, WhenEnabled(Bad("pEnable cannot be NULL"))},
    {"IsSoundEnabled", [] { return QLBCR_IsSoundEnabled(&room.flag); }, WhenEnabled()},
    {"SetReadSuccessSoundFileNull", [] { return QLBCR_SetReadSuccessSoundFile(nullptr); },
     WhenEnabled(Bad("Specified File does not exist"))},
    {"SetReadSuccessSoundFileMissing", [] { return QLBCR_SetReadSuccessSoundFile(L"C:\\none\\such.wav"); },
     WhenEnabled(Bad("Specified File does not exist"))},
    {"SetPrefixDataNull", [] { return QLBCR_SetPrefixData(0, nullptr); }, WhenEnabled()},
    {"SetSuffixDataNull", [] { return QLBCR_SetSuffixData(0, nullptr); }, WhenEnabled()},
    {"GetPrefixDataAllNull", [] { return QLBCR_GetPrefixData(nullptr, nullptr); },
     WhenEnabled(Bad("pAsTop cannot be NULL"))},
    {"GetPrefixDataFlagNull", [] { return QLBCR_GetPrefixData(nullptr, room.text.data()); },
     WhenEnabled(Bad("pAsTop cannot be NULL"))},
    {"GetPrefixDataTextNull", [] { return QLBCR_GetPrefixData(&room.number, nullptr); }, WhenEnabled(kNullText)},
    {"GetPrefixData", [] { return QLBCR_GetPrefixData(&room.number, room.text.data()); }, WhenEnabled()},
    {"GetSuffixDataAllNull", [] { return QLBCR_GetSuffixData(nullptr, nullptr); },
     WhenEnabled(Bad("pAsTop cannot be NULL"))},
    {"GetSuffixDataFlagNull", [] { return QLBCR_GetSuffixData(nullptr, room.text.data()); },
     WhenEnabled(Bad("pAsTop cannot be NULL"))},
    {"GetSuffixDataTextNull", [] { return QLBCR_GetSuffixData(&room.number, nullptr); }, WhenEnabled(kNullText)},
    {"GetSuffixData", [] { return QLBCR_GetSuffixData(&room.number, room.text.data()); }, WhenEnabled()},
    {"SetDataEditingModeNull", [] { return QLBCR_SetDataEditingMode(0, nullptr, nullptr, 0, 0); }, WhenEnabled()},
    {"GetDataEditingModeAllNull", [] { return QLBCR_GetDataEditingMode(nullptr, nullptr, nullptr, nullptr, nullptr); },
     WhenEnabled(Bad("pEditMode cannot be NULL"))},
    {"GetDataEditingModeModeNull",
     [] { return QLBCR_GetDataEditingMode(nullptr, room.text.data(), room.other.data(), &room.start, &room.end); },
     WhenEnabled(Bad("pEditMode cannot be NULL"))},
    {"GetDataEditingModeTargetNull",
     [] { return QLBCR_GetDataEditingMode(&room.number, nullptr, room.other.data(), &room.start, &room.end); },
     WhenEnabled(kNullText)},
    {"GetDataEditingModeContentNull",
     [] { return QLBCR_GetDataEditingMode(&room.number, room.text.data(), nullptr, &room.start, &room.end); },
     WhenEnabled(kNullText)},
    {"GetDataEditingModeStartNull",
     [] { return QLBCR_GetDataEditingMode(&room.number, room.text.data(), room.other.data(), nullptr, &room.end); },
     WhenEnabled(Bad("pStart cannot be NULL"))},
    {"GetDataEditingModeEndNull",
     [] { return QLBCR_GetDataEditingMode(&room.number, room.text.data(), room.other.data(), &room.start, nullptr); },
     WhenEnabled(Bad("pEnd cannot be NULL"))},
    {"GetDataEditingMode",
     [] { return QLBCR_GetDataEditingMode(&room.number, room.text.data(), room.other.data(), &room.start, &room.end); },
     WhenEnabled()},
    {"DotNetGetNoOfDevicesNull", [] { return QLBCR_dotNet_GetNoOfDevices(nullptr); },
     Always(Bad("pNumDevices cannot be NULL"))},
    {"DotNetGetNoOfDevicesLessThanNone",
     [] { return With(room.count, -7, [] { return QLBCR_dotNet_GetNoOfDevices(&room.count); }); }, Always(TooSmall())},
};

class BarcodeCheck : public IntermecTest, public ::testing::WithParamInterface<Row> {
  protected:
    static bool AsksForVersion() { return std::string_view(GetParam().name).starts_with("Firmware"); }

    // The row in a state, and that a refusal changes nothing: neither at the engine, nor the state, nor what the
    // pointers point to.
    void ExpectOutcome(int state, const Outcome& outcome) {
        const int before = BarcodeState();
        ASSERT_EQ(before, state);
        Engine().TakeCalls();
        FillRoom();
        const Row& row = GetParam();
        if (outcome.code == QLERR_OK) {
            EXPECT_SUCCESS(row.call()) << "in state " << state;
            return;
        }
        EXPECT_FAILURE(row.call(), outcome.code, outcome.text) << "in state " << state;
        // The engine is asked for its version before it is known what becomes of it.
        const bool asks = outcome.text != kNotInitialized && outcome.text != kNotEnabled && AsksForVersion();
        EXPECT_EQ(Engine().TakeTexts(), asks ? Texts{"StatusRead 30 C0"} : Texts{}) << "in state " << state;
        EXPECT_TRUE(IsRoomUntouched()) << "in state " << state;
        EXPECT_EQ(BarcodeState(), before);
    }
};

TEST_P(BarcodeCheck, IsMadeInEachState) {
    ExpectOutcome(0, GetParam().outcomes[0]);
    ASSERT_SUCCESS(QLBCR_Initialize());
    ExpectOutcome(1, GetParam().outcomes[1]);
    if (BarcodeState() == 0) {
        ASSERT_SUCCESS(QLBCR_Initialize());
    }
    if (BarcodeState() == 1) {
        ASSERT_SUCCESS(QLBCR_Enable());
    }
    ExpectOutcome(2, GetParam().outcomes[2]);
}

// The engine's library was not there: as before the first initialisation.
TEST_P(BarcodeCheck, TakesADeviceWhoseLibraryIsMissingForNotInitialized) {
    {
        const EnvironmentGuard path(L"PATH", L"C:\\windows\\system32");
        ASSERT_FAILURE(QLBCR_Initialize(), QLERR_INTERNAL_ERROR, "Unable to load ISDC.dll.");
    }
    ExpectOutcome(0, GetParam().outcomes[0]);
}

INSTANTIATE_TEST_SUITE_P(Functions, BarcodeCheck, ::testing::ValuesIn(kRefusals), NameOfRow);

}  // namespace
}  // namespace quarlin::test

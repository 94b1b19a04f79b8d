// SPDX-License-Identifier: Apache-2.0
#include "sdk/library_facts.h"

#include "quarlin/gps.h"
#include "quarlin/library.h"
#include "sdk/check.h"
#include "sdk/loaded_library.h"

#include <array>

namespace quarlin::qlctl {
namespace {

// A family is present when the loaded library exports the function that brings it up.
struct Family {
    const char* title;
    const char* field;
    const char* function;
};

constexpr std::array kFamilies{
    Family{"Barcode", "barcode", "QLBCR_Initialize"},  Family{"Card reader", "card_reader", "QLMSR_Initialize"},
    Family{"GPS", "gps", "QLGPS_Initialize"},          Family{"UHF RFID", "uhf_rfid", "QLUHFRFID_OpenReader"},
    Family{"Device", "device", "QLDEVICE_Initialize"}, Family{"Camera", "camera", "QLCAM_Initialize"},
};

constexpr size_t kModelSize = 250;
constexpr size_t kReceiverNameSize = 64;

// The library's protocol for wide texts: ask for the size, then for the text.
std::string WideText(QLerr (*function)(wchar_t*, int*)) {
    int size = 0;
    Check(function(nullptr, &size));
    std::wstring text(static_cast<size_t>(size), L'\0');
    Check(function(text.data(), &size));
    return ToUtf8(text.c_str());
}

std::string ManagementModel() {
    std::array<char, kModelSize> text{};
    Check(QLMISC_GetModelNumber(text.data(), static_cast<int>(text.size()), nullptr));
    return text.data();
}

// Nothing when this machine's model has no known receiver, which is no failure.
std::optional<std::string> ReceiverName() {
    std::array<char, kReceiverNameSize> text{};
    const QLerr result = QLGPS_GetDeviceName(text.data(), static_cast<int>(text.size()));
    if (result == QLERR_OP_UNSUPPORTED) {
        return std::nullopt;
    }
    Check(result);
    return text.data();
}

template <typename Question>
Answer Ask(Question question) {
    try {
        return {question(), std::nullopt};
    } catch (const Failure& failure) {
        if (!failure.Cause()) {
            throw;
        }
        return {std::nullopt, failure.Cause()};
    }
}

}  // namespace

InfoReport GatherInfo() {
    InfoReport report;
    report.parts = {
        {"SDK version", "sdk_version", Ask([] { return WideText(QLLIB_GetSDKVersion); })},
        {"Library", "library", Ask([] { return LoadedLibraryPath(); })},
        {"Product", "firmware_product", Ask([] { return WideText(QLLIB_GetModelNumber); })},
        {"Model", "management_model", Ask(ManagementModel)},
        {"GPS receiver", "gps_receiver", Ask(ReceiverName)},
    };
    for (const Family& family : kFamilies) {
        report.families.push_back({family.title, family.field, LoadedLibraryExports(family.function)});
    }
    return report;
}

}  // namespace quarlin::qlctl

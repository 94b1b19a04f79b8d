// SPDX-License-Identifier: Apache-2.0
#include "card/card_session_win.h"

#include <quarlin/quarlin.h>

#include <array>
#include <stdexcept>
#include <utility>

#include "support/system_text_win.h"

namespace quarlin::test {
namespace {

void Check(const char* call, QLerr result) {
    if (result != QLERR_OK) {
        std::array<char, 1024> text{};
        QLAPI_GetLastError(text.data(), static_cast<int>(text.size()));
        throw std::runtime_error(std::string(call) + ": " + text.data());
    }
}

}  // namespace

CardSession::CardSession() {
    Check("QLMSR_Initialize", QLMSR_Initialize());
}

CardSession::~CardSession() {
    QLMSR_Uninitialize();
}

std::vector<MagStripeReaderInfo> ListReaders() {
    constexpr int kRoom = 16;
    std::vector<MagStripeReaderInfo> readers(kRoom);
    int count = kRoom;
    Check("QLMSR_GetMagStripeDevices", QLMSR_GetMagStripeDevices(readers.data(), &count));
    readers.resize(static_cast<std::size_t>(count));
    return readers;
}

std::map<int, std::string> ListSerials() {
    std::map<int, std::string> serials;
    for (const MagStripeReaderInfo& reader : ListReaders()) {
        serials[reader.index] = ToUtf8(reader.serialNumber);
    }
    return serials;
}

void Select(int index) {
    Check("QLMSR_SelectDevice", QLMSR_SelectDevice(index));
}

void Enable() {
    Check("QLMSR_Enable", QLMSR_Enable());
}

void Disable() {
    Check("QLMSR_Disable", QLMSR_Disable());
}

bool IsEnabled() {
    bool enabled = false;
    Check("QLMSR_IsEnabled", QLMSR_IsEnabled(&enabled));
    return enabled;
}

unsigned int AddCallback(int number) {
    unsigned int id = 0;
    Check("QLMSR_AddCallback", QLMSR_AddCallback(SwipeLog::Callback(number), &id));
    return id;
}

OneReader::OneReader(ReaderSettings settings) : reader_(std::move(settings)) {
    if (ListReaders().size() != 1) {
        throw std::runtime_error("the library does not find one reader");
    }
    callback_ = AddCallback();
}

EnabledReader::EnabledReader(ReaderSettings settings) : OneReader(std::move(settings)) {
    Enable();
}

}  // namespace quarlin::test

// SPDX-License-Identifier: Apache-2.0
#include "gps/receiver_model.h"

#include <algorithm>
#include <array>

namespace quarlin::gps {
namespace {

struct ReceiverRow {
    std::string_view machineModel;
    const char* receiver;
};

constexpr const char* kLeadtek = "LEADTEK Mod:LR9101";
constexpr std::array kReceivers{
    ReceiverRow{"JR-51", kLeadtek}, ReceiverRow{"JR-52", kLeadtek}, ReceiverRow{"JR-53", kLeadtek},
    ReceiverRow{"JR-54", kLeadtek}, ReceiverRow{"JR-55", kLeadtek}, ReceiverRow{"JR-56", kLeadtek},
    ReceiverRow{"JR-57", kLeadtek}, ReceiverRow{"JR-58", kLeadtek},
};
constexpr std::size_t kModelLength = 5;

}  // namespace

const char* ReceiverName(std::string_view machineModel) {
    const auto row = std::ranges::find(kReceivers, machineModel.substr(0, kModelLength), &ReceiverRow::machineModel);
    return row == kReceivers.end() ? nullptr : row->receiver;
}

}  // namespace quarlin::gps

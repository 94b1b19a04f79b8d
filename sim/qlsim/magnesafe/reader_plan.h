// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/device.h"
#include "magnesafe/card.h"
#include "magnesafe/reader.h"

namespace quarlin::sim::magnesafe {

struct ReaderPlanSettings {
    ReaderSettings reader;
    bool plugged = true;       // whether it is plugged in at the start
    std::optional<Form> form;  // of swipes that name none; nothing: what the reader does at its security level
    std::vector<Card> cards;
    std::vector<std::string> cardFiles;  // beside the scenario
};

// The kind "card-reader". Problems are left in the reader.
std::unique_ptr<DevicePlan> ReadReaderPlan(TableReader& table);
ReaderPlanSettings ReadReaderSettings(TableReader& table);

}  // namespace quarlin::sim::magnesafe

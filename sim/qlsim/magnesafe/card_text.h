// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/table_reader.h"
#include "magnesafe/card.h"

namespace quarlin::sim::magnesafe {

// The [[card]] tables of a file of cards. Both throw ScenarioError with everything that is wrong.
std::vector<Card> ParseCards(std::string_view text, const std::string& file);
std::vector<Card> LoadCards(const std::filesystem::path& file);

// The [[KEY]] tables of another file. Problems are left in the reader.
std::vector<Card> ReadCards(TableReader& table, const std::string& key);

// "1,3", "none" or "all"; nothing when it is neither.
std::optional<std::array<bool, kTracks>> ParseTrackList(std::string_view text);
// "495=06": bytes in hexadecimal for a place in the report, counted from the report ID at 0. Nothing when it is no such
// thing or goes beyond the report.
std::optional<Patch> ParsePatch(std::string_view text);
// One byte for each character. Nothing when a character is above U+00FF.
std::optional<std::string> Latin1(std::string_view utf8);

}  // namespace quarlin::sim::magnesafe

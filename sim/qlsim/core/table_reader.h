// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quarlin::sim {

struct Place {
    std::uint32_t line = 0;
    std::uint32_t column = 0;
};

struct Problem {
    Place place;
    std::string text;
};

// Everything that is wrong with a scenario file; what() holds a line "file:line:column: sentence" for each.
class ScenarioError : public std::runtime_error {
  public:
    ScenarioError(const std::string& file, std::vector<Problem> problems);
    const std::vector<Problem>& Problems() const { return problems_; }

  private:
    std::vector<Problem> problems_;
};

// One table of a scenario file, read key by key. A value that is missing or wrong is noted as a problem and replaced by
// a harmless one, so that one reading finds everything that is wrong with a file.
class TableReader {
  public:
    struct Document;

    // The root table of a text. Throws ScenarioError when the text is no TOML.
    static TableReader Parse(std::string_view text, const std::string& file);

    TableReader(const TableReader&) = default;
    TableReader& operator=(const TableReader&) = default;
    ~TableReader();

    // With no fallback the key has to be there.
    std::string Text(const std::string& key, std::optional<std::string> fallback = {});
    double Number(const std::string& key, std::optional<double> fallback, double least, double most);
    std::int64_t Integer(const std::string& key, std::optional<std::int64_t> fallback, std::int64_t least,
                         std::int64_t most);
    bool Flag(const std::string& key, bool fallback);
    std::vector<std::string> Texts(const std::string& key, std::vector<std::string> fallback);
    // A pair of numbers, and a list of pairs; empty when the key is absent.
    std::optional<std::pair<double, double>> Pair(const std::string& key);
    std::vector<std::pair<double, double>> Pairs(const std::string& key);
    // A date-time in milliseconds since 1970 (without an offset it counts as UTC), or nothing for the text "now".
    std::optional<std::int64_t> TimeOrNow(const std::string& key, std::int64_t fallback);
    std::optional<TableReader> Table(const std::string& key, const std::string& what);
    std::vector<TableReader> Tables(const std::string& key, const std::string& what);

    bool Has(const std::string& key) const;
    // Where a key's value stands; the table itself when the key is absent.
    Place PlaceOf(const std::string& key) const;
    void Complain(const std::string& key, const std::string& sentence);

    // Notes every key that nobody asked for.
    void RefuseTheRest();
    // On any reader of the file, after all were read: throws ScenarioError when there was a problem.
    void ThrowProblems() const;

  private:
    struct Node;

    explicit TableReader(std::shared_ptr<Node> node) : node_(std::move(node)) {}

    std::shared_ptr<Node> node_;
};

}  // namespace quarlin::sim

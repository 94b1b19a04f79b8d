// SPDX-License-Identifier: Apache-2.0
#include "core/table_reader.h"

#include <toml++/toml.h>
#include <algorithm>
#include <chrono>

#include "core/command.h"

namespace quarlin::sim {
namespace {

Place PlaceOfSource(const toml::source_region& source) {
    return {source.begin.line, source.begin.column};
}

std::string Sentences(const std::string& file, const std::vector<Problem>& problems) {
    std::string text;
    for (const Problem& problem : problems) {
        text += (text.empty() ? "" : "\n") + file + ":" + std::to_string(problem.place.line) + ":" +
                std::to_string(problem.place.column) + ": " + problem.text;
    }
    return text;
}

std::string Plain(double value) {
    std::string text = std::to_string(value);
    text.erase(text.find_last_not_of('0') + 1);
    return text.back() == '.' ? text.substr(0, text.size() - 1) : text;
}

std::optional<std::pair<double, double>> PairIn(const toml::node& node) {
    const toml::array* const array = node.as_array();
    if (array == nullptr || array->size() != 2 || !(*array)[0].is_number() || !(*array)[1].is_number()) {
        return std::nullopt;
    }
    return std::pair{*(*array)[0].value<double>(), *(*array)[1].value<double>()};
}

std::int64_t Milliseconds(const toml::date_time& value) {
    using namespace std::chrono;
    const sys_days day{year{value.date.year} / month{value.date.month} / std::chrono::day{value.date.day}};
    auto time = day + hours{value.time.hour} + minutes{value.time.minute} + seconds{value.time.second} +
                nanoseconds{value.time.nanosecond};
    if (value.offset) {
        time -= minutes{value.offset->minutes};
    }
    return duration_cast<milliseconds>(time.time_since_epoch()).count();
}

}  // namespace

struct TableReader::Document {
    std::string file;
    toml::table root;
    std::vector<Problem> problems;
};

struct TableReader::Node {
    std::shared_ptr<Document> document;
    const toml::table* table;
    std::string what;  // "a gps device", for sentences
    std::vector<std::string> asked;

    const toml::node* Ask(const std::string& key) {
        asked.push_back(key);
        return table->get(key);
    }
    void Note(const toml::source_region& source, std::string text) {
        document->problems.push_back({PlaceOfSource(source), std::move(text)});
    }
    void NoteMissing(const std::string& key) { Note(table->source(), what + " needs the key \"" + key + "\""); }
    void NoteKind(const toml::node& node, const std::string& key, const std::string& wanted) {
        Note(node.source(), "\"" + key + "\" has to be " + wanted);
    }
};

ScenarioError::ScenarioError(const std::string& file, std::vector<Problem> problems)
    : std::runtime_error(Sentences(file, problems)), problems_(std::move(problems)) {
}

TableReader::~TableReader() = default;

TableReader TableReader::Parse(std::string_view text, const std::string& file) {
    auto document = std::make_shared<Document>();
    document->file = file;
    try {
        document->root = toml::parse(text, file);
    } catch (const toml::parse_error& error) {
        throw ScenarioError(file, {{PlaceOfSource(error.source()), std::string(error.description())}});
    }
    const toml::table* const root = &document->root;
    return TableReader(std::make_shared<Node>(Node{std::move(document), root, "the scenario", {}}));
}

std::string TableReader::Text(const std::string& key, std::optional<std::string> fallback) {
    const toml::node* const node = node_->Ask(key);
    if (node == nullptr && !fallback) {
        node_->NoteMissing(key);
    } else if (node != nullptr && !node->is_string()) {
        node_->NoteKind(*node, key, "a text in quotes");
    } else if (node != nullptr) {
        return *node->value<std::string>();
    }
    return fallback.value_or("");
}

double TableReader::Number(const std::string& key, std::optional<double> fallback, double least, double most) {
    const toml::node* const node = node_->Ask(key);
    if (node == nullptr) {
        if (!fallback) {
            node_->NoteMissing(key);
        }
    } else if (!node->is_number()) {
        node_->NoteKind(*node, key, "a number");
    } else if (const double value = *node->value<double>(); !(value >= least && value <= most)) {
        node_->NoteKind(*node, key, "a number from " + Plain(least) + " to " + Plain(most));
    } else {
        return value;
    }
    return fallback.value_or(least);
}

std::int64_t TableReader::Integer(const std::string& key, std::optional<std::int64_t> fallback, std::int64_t least,
                                  std::int64_t most) {
    const toml::node* const node = node_->Ask(key);
    if (node == nullptr) {
        if (!fallback) {
            node_->NoteMissing(key);
        }
    } else if (!node->is_integer()) {
        node_->NoteKind(*node, key, "a whole number");
    } else if (const std::int64_t value = *node->value<std::int64_t>(); value < least || value > most) {
        node_->NoteKind(*node, key, "a whole number from " + std::to_string(least) + " to " + std::to_string(most));
    } else {
        return value;
    }
    return fallback.value_or(least);
}

bool TableReader::Flag(const std::string& key, bool fallback) {
    const toml::node* const node = node_->Ask(key);
    if (node != nullptr && !node->is_boolean()) {
        node_->NoteKind(*node, key, "true or false");
        return fallback;
    }
    return node == nullptr ? fallback : *node->value<bool>();
}

std::vector<std::string> TableReader::Texts(const std::string& key, std::vector<std::string> fallback) {
    const toml::node* const node = node_->Ask(key);
    if (node == nullptr) {
        return fallback;
    }
    const toml::array* const array = node->as_array();
    if (array == nullptr || !std::all_of(array->begin(), array->end(), [](const auto& e) { return e.is_string(); })) {
        node_->NoteKind(*node, key, "a list of texts");
        return fallback;
    }
    std::vector<std::string> texts;
    for (const toml::node& element : *array) {
        texts.push_back(*element.value<std::string>());
    }
    return texts;
}

std::optional<std::pair<double, double>> TableReader::Pair(const std::string& key) {
    const toml::node* const node = node_->Ask(key);
    if (node == nullptr) {
        return std::nullopt;
    }
    const auto pair = PairIn(*node);
    if (!pair) {
        node_->NoteKind(*node, key, "a pair of numbers in brackets");
    }
    return pair;
}

std::vector<std::pair<double, double>> TableReader::Pairs(const std::string& key) {
    const toml::node* const node = node_->Ask(key);
    std::vector<std::pair<double, double>> pairs;
    if (node == nullptr) {
        return pairs;
    }
    const toml::array* const array = node->as_array();
    if (array == nullptr) {
        node_->NoteKind(*node, key, "a list of pairs of numbers");
        return pairs;
    }
    for (const toml::node& element : *array) {
        if (const auto pair = PairIn(element)) {
            pairs.push_back(*pair);
        } else {
            node_->NoteKind(element, key, "a list of pairs of numbers");
        }
    }
    return pairs;
}

std::optional<std::int64_t> TableReader::TimeOrNow(const std::string& key, std::int64_t fallback) {
    const toml::node* const node = node_->Ask(key);
    if (node == nullptr) {
        return fallback;
    }
    if (const auto text = node->value<std::string>(); node->is_string() && text == "now") {
        return std::nullopt;
    }
    if (!node->is_date_time()) {
        node_->NoteKind(*node, key, "a date and time such as 2026-05-12T08:30:00Z, or \"now\"");
        return fallback;
    }
    return Milliseconds(*node->value<toml::date_time>());
}

std::optional<TableReader> TableReader::Table(const std::string& key, const std::string& what) {
    const toml::node* const node = node_->Ask(key);
    if (node == nullptr) {
        return std::nullopt;
    }
    if (!node->is_table()) {
        node_->NoteKind(*node, key, "a table");
        return std::nullopt;
    }
    return TableReader(std::make_shared<Node>(Node{node_->document, node->as_table(), what, {}}));
}

std::vector<TableReader> TableReader::Tables(const std::string& key, const std::string& what) {
    const toml::node* const node = node_->Ask(key);
    std::vector<TableReader> tables;
    if (node == nullptr) {
        return tables;
    }
    const toml::array* const array = node->as_array();
    if (array == nullptr || !std::all_of(array->begin(), array->end(), [](const auto& e) { return e.is_table(); })) {
        node_->NoteKind(*node, key, "a list of tables: write [[" + key + "]] with double brackets");
        return tables;
    }
    for (const toml::node& element : *array) {
        tables.push_back(TableReader(std::make_shared<Node>(Node{node_->document, element.as_table(), what, {}})));
    }
    return tables;
}

bool TableReader::Has(const std::string& key) const {
    return node_->table->contains(key);
}

Place TableReader::PlaceOf(const std::string& key) const {
    const toml::node* const node = node_->table->get(key);
    return PlaceOfSource(node == nullptr ? node_->table->source() : node->source());
}

void TableReader::Complain(const std::string& key, const std::string& sentence) {
    node_->document->problems.push_back({PlaceOf(key), sentence});
}

void TableReader::RefuseTheRest() {
    for (const auto& [key, value] : *node_->table) {
        const std::string name(key.str());
        if (std::find(node_->asked.begin(), node_->asked.end(), name) == node_->asked.end()) {
            node_->Note(key.source(), node_->what + " has no key \"" + name + "\"" + Suggestion(name, node_->asked));
        }
    }
}

void TableReader::ThrowProblems() const {
    std::vector<Problem> problems = node_->document->problems;
    if (problems.empty()) {
        return;
    }
    std::stable_sort(problems.begin(), problems.end(), [](const Problem& a, const Problem& b) {
        return std::pair(a.place.line, a.place.column) < std::pair(b.place.line, b.place.column);
    });
    throw ScenarioError(node_->document->file, std::move(problems));
}

}  // namespace quarlin::sim

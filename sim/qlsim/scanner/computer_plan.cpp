// SPDX-License-Identifier: Apache-2.0
#include "scanner/computer_plan.h"

#include <array>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

#include "core/command_table.h"
#include "core/table_reader.h"
#include "core/threaded_device.h"
#include "machine_libraries/library_command.h"

namespace quarlin::sim::scanner {
namespace {

constexpr std::size_t kLongestName = 200;

struct ComputerCommand {
    enum class Verb {
        kName,
        kNoName,
        kReset,
        kStatus,
    };

    Verb verb = Verb::kStatus;
    std::string name;
};

using Verb = ComputerCommand::Verb;

void ParseNothing(const Words&, ComputerCommand&) {
}

void ParseName(const Words& words, ComputerCommand& command) {
    command.name = words[1];
    if (command.name.size() > kLongestName) {
        throw CommandError("a product name has at most 200 bytes");
    }
}

struct Row {
    const char* name;
    Verb verb;
    std::size_t least;  // arguments
    std::size_t most;
    const char* usage;
    void (*parse)(const Words&, ComputerCommand&);
};

constexpr std::array<Row, 4> kRows = {{
    {"product-name", Verb::kName, 1, 1, "product-name TEXT", ParseName},
    {"no-product-name", Verb::kNoName, 0, 0, "no-product-name", ParseNothing},
    {"reset", Verb::kReset, 0, 0, "reset", ParseNothing},
    {"status", Verb::kStatus, 0, 0, "status", ParseNothing},
}};

const char* UsageOf(const Row& row) {
    return row.usage;
}

ComputerCommand Parse(const Words& words) {
    return ParseByTable<ComputerCommand>(kRows, words, UsageOf);
}

// The name is the computer's own again when qlsim ends.
class ComputerBehaviour final : public Behaviour {
  public:
    ComputerBehaviour(std::optional<std::string> productName, const Surroundings& surroundings)
        : productName_(std::move(productName)), name_(surroundings.name), make_(surroundings.computer.productName) {}

    void Begin() override {
        if (!make_) {
            throw DeviceError(name_ + ": there is no machine whose name could be changed");
        }
        record_ = make_();
        before_ = record_->Read();
        Reset();
    }
    void End() override {
        if (record_ == nullptr) {
            return;
        }
        try {
            record_->Write(before_);
        } catch (const DeviceError&) {
            // The registry is not to be had any more, and with it the name.
        }
        record_.reset();
    }
    double NextStep() const override { return std::numeric_limits<double>::infinity(); }
    void Step(double) override {}

    std::string Command(const Words& words, double now) override {
        const ComputerCommand command = Parse(words);
        try {
            switch (command.verb) {
                case Verb::kName:
                    record_->Write(command.name);
                    return "product name " + command.name;
                case Verb::kNoName:
                    record_->Write(std::nullopt);
                    return "no product name";
                case Verb::kReset:
                    Reset();
                    return "as the scenario has it";
                case Verb::kStatus:
                    return OneLine(Describe(now));
            }
        } catch (const DeviceError& error) {
            throw CommandError(error.what());
        }
        return {};
    }

    nlohmann::ordered_json Describe(double now) override {
        nlohmann::ordered_json json;
        json["device"] = name_;
        json["kind"] = "computer";
        json["seconds"] = std::round(now * 1000) / 1000;
        json["product_name"] = JsonOf(record_->Read());
        json["before"] = JsonOf(before_);
        return json;
    }

  private:
    static nlohmann::ordered_json JsonOf(const std::optional<std::string>& name) {
        return name ? nlohmann::ordered_json(*name) : nlohmann::ordered_json();
    }
    void Reset() { record_->Write(productName_ ? productName_ : before_); }

    std::optional<std::string> productName_;
    std::string name_;
    std::function<std::unique_ptr<ProductName>()> make_;
    std::unique_ptr<ProductName> record_;
    std::optional<std::string> before_;
};

class ComputerPlan final : public DevicePlan {
  public:
    explicit ComputerPlan(std::optional<std::string> productName) : productName_(std::move(productName)) {}

    std::unique_ptr<Device> Make(Surroundings surroundings) const override {
        auto behaviour = std::make_unique<ComputerBehaviour>(productName_, surroundings);
        return std::make_unique<ThreadedDevice>(std::move(surroundings), std::move(behaviour));
    }
    void CheckCommand(const Words& words) const override { Parse(words); }
    std::string Summary() const override {
        return productName_ ? "says it is a \"" + *productName_ + "\"" : "says what it said before";
    }
    std::vector<std::string> Usage() const override { return UsageByTable(kRows, UsageOf); }

  private:
    std::optional<std::string> productName_;
};

}  // namespace

std::unique_ptr<DevicePlan> ReadComputerPlan(TableReader& table) {
    std::optional<std::string> name;
    if (table.Has("product_name")) {
        name = table.Text("product_name");
        if (name->size() > kLongestName) {
            table.Complain("product_name", "\"product_name\" has to be a text of at most 200 bytes");
        }
    } else {
        table.Text("product_name", "");
    }
    return std::make_unique<ComputerPlan>(std::move(name));
}

}  // namespace quarlin::sim::scanner

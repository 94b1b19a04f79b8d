// SPDX-License-Identifier: Apache-2.0
#include "commands/rfid_options.h"

#include "view/hex.h"

#include <CLI/CLI.hpp>
#include <map>
#include <memory>

namespace quarlin::qlctl {
namespace {

std::string CheckHex(const std::string& text) {
    return ParseHex(text) ? "" : "not bytes in hex digits: " + text;
}

std::string CheckWords(const std::string& text) {
    const auto bytes = ParseHex(text);
    return bytes && bytes->size() % 2 == 0 ? "" : "not words of 2 bytes in hex digits: " + text;
}

// The text is not repeated: it may be a password that is right but for a digit.
std::string CheckPassword(const std::string& text) {
    return ParsePassword(text) ? "" : "a password is 1 to 8 hex digits";
}

using Options = std::shared_ptr<RfidOptions>;

CLI::App* AddCommand(CLI::App& family, const char* name, const char* description, RfidCommand command, Chosen& chosen,
                     Options& options) {
    options = std::make_shared<RfidOptions>();
    CLI::App* const added = family.add_subcommand(name, description);
    added->add_flag("--json", options->json, "Print one JSON object");
    added->callback([&chosen, command, options] {
        chosen.run = [command, options](Output& output) { return command(*options, output); };
    });
    return added;
}

void AddTimeout(CLI::App& command, RfidOptions& options, const char* description) {
    command.add_option("--timeout", options.timeout, description)
        ->check(CLI::Range(0.0, 1e6).description(""))
        ->type_name("S");
}

void AddUsualTimeout(CLI::App& command, RfidOptions& options) {
    AddTimeout(command, options, "Give the reader up after so many seconds; after 10 without an answer unless given");
}

CLI::Option* AddPassword(CLI::App& command, RfidOptions& options, const char* description) {
    return command.add_option("--password", options.password, description)->check(CheckPassword)->type_name("HEX");
}

void AddTag(CLI::App& command, RfidOptions& options) {
    command.add_option("--epc", options.epc, "EPC of the tag; unless given, the only tag in the field")
        ->check(CheckHex)
        ->type_name("HEX");
}

void AddPlace(CLI::App& command, RfidOptions& options) {
    const std::map<std::string, unsigned> banks{{"reserved", 0U}, {"epc", 1U}, {"tid", 2U}, {"user", 3U}};
    command.add_option("--bank", options.place.bank, "Memory bank")
        ->transform(CLI::CheckedTransformer(banks).description(""))
        ->type_name("reserved|epc|tid|user")
        ->required();
    command.add_option("--word", options.place.word, "First word, 0 unless given")->type_name("N");
}

// What cannot be undone wants a word more than others.
void AddYes(CLI::App& command) {
    const std::string description = "Yes, do it: what it does may be for ever";
    command.add_flag("--yes", description)->required()->disable_flag_override();
}

void AddInventory(CLI::App& rfid, Chosen& chosen, RfidCommand command) {
    Options options;
    CLI::App* const inventory = AddCommand(rfid, "inventory", "List the tags in the field", command, chosen, options);
    inventory->add_option("--repeat", options->repeat, "Rounds, 1 unless given; 0 = until Ctrl-C or the time is up")
        ->check(CLI::Range(0, 1000000000).description(""))
        ->type_name("N");
    inventory->add_option("--interval", options->interval, "Seconds from one round to the next, 0 to 3600")
        ->check(CLI::Range(0.0, 3600.0).description(""))
        ->capture_default_str();
    AddTimeout(*inventory, *options, "End after so many seconds; a reader that does not answer is given up then, too");
    inventory->footer(
        "A reader that leaves a question open for 10 seconds is given up when there is no --timeout.\n\n"
        "Examples:\n"
        "  qlctl rfid inventory\n"
        "  qlctl rfid inventory --repeat 0 --timeout 30\n"
        "  qlctl rfid inventory --json --repeat 5 --interval 1");
}

void AddRead(CLI::App& rfid, Chosen& chosen, RfidCommand command) {
    Options options;
    CLI::App* const read = AddCommand(rfid, "read", "Read words of a tag's memory", command, chosen, options);
    AddTag(*read, *options);
    AddPlace(*read, *options);
    read->add_option("--count", options->count, "Words to read, 1 unless given")
        ->check(CLI::Range(1, 255).description(""))
        ->type_name("N");
    AddPassword(*read, *options, "Access password, the digit of most weight first");
    AddUsualTimeout(*read, *options);
    read->footer(
        "Examples:\n"
        "  qlctl rfid read --bank tid --count 2\n"
        "  qlctl rfid read --epc E2801160 --bank user --word 4 --count 8 --password 1234ABCD");
}

void AddWrite(CLI::App& rfid, Chosen& chosen, RfidCommand command) {
    Options options;
    CLI::App* const write = AddCommand(rfid, "write", "Write words of a tag's memory", command, chosen, options);
    AddTag(*write, *options);
    AddPlace(*write, *options);
    write->add_option("--data", options->data, "The words, 1 to 27")->check(CheckWords)->type_name("HEX")->required();
    AddPassword(*write, *options, "Access password, the digit of most weight first");
    AddUsualTimeout(*write, *options);
    write->footer(
        "Examples:\n"
        "  qlctl rfid write --bank user --data CAFE0001\n"
        "  qlctl rfid write --epc E2801160 --bank user --word 4 --data \"CAFE 0001\" --password 1234ABCD");
}

void AddLock(CLI::App& rfid, Chosen& chosen, RfidCommand command) {
    Options options;
    CLI::App* const lock = AddCommand(rfid, "lock", "Lock or unlock areas of a tag's memory", command, chosen, options);
    lock->add_option("parameter1", options->lockParameter1, "First number for the reader, 0 to 255")
        ->type_name("P1")
        ->required();
    lock->add_option("parameter2", options->lockParameter2, "Second number for the reader, 0 to 255")
        ->type_name("P2")
        ->required();
    AddTag(*lock, *options);
    AddPassword(*lock, *options, "Access password, the digit of most weight first");
    AddYes(*lock);
    AddUsualTimeout(*lock, *options);
    lock->footer(
        "What the two numbers mean is the reader's affair. Some locks are for ever.\n\n"
        "Examples:\n"
        "  qlctl rfid lock 3 1 --password 1234ABCD --yes");
}

void AddKill(CLI::App& rfid, Chosen& chosen, RfidCommand command) {
    Options options;
    CLI::App* const kill = AddCommand(rfid, "kill", "Kill a tag, for ever", command, chosen, options);
    AddTag(*kill, *options);
    AddPassword(*kill, *options, "Kill password, the digit of most weight first")->required();
    AddYes(*kill);
    AddUsualTimeout(*kill, *options);
    kill->footer(
        "Examples:\n"
        "  qlctl rfid kill --epc E2801160 --password 5678ABCD --yes");
}

void AddPower(CLI::App& rfid, Chosen& chosen, RfidCommand command) {
    Options options;
    CLI::App* const power = AddCommand(rfid, "power", "Show the transmit power, or set it", command, chosen, options);
    power->add_option("power", options->power, "New power, 0 to 255, in the reader's unit")->type_name("N");
    AddUsualTimeout(*power, *options);
    power->footer(
        "Examples:\n"
        "  qlctl rfid power\n"
        "  qlctl rfid power 200");
}

void AddQuery(CLI::App& rfid, Chosen& chosen, RfidCommand command) {
    Options options;
    CLI::App* const query =
        AddCommand(rfid, "query", "Show the parameters of the inventory, or set some", command, chosen, options);
    query->add_option("--link-frequency", options->query.linkFrequencyKhz, "40, 160, 213, 256, 320 or 640 kHz")
        ->type_name("N");
    query->add_option("--miller", options->query.miller, "0 FM0, 1 Miller 2, 2 Miller 4, 3 Miller 8")->type_name("N");
    query->add_option("--session", options->query.session, "0 to 3")->type_name("N");
    query->add_option("--q", options->query.q, "Q at the begin of a round, 0 to 15")->type_name("N");
    query->add_option("--sensitivity", options->query.sensitivityDbm, "-86 to -50 dBm")->type_name("N");
    AddUsualTimeout(*query, *options);
    query->footer(
        "Examples:\n"
        "  qlctl rfid query\n"
        "  qlctl rfid query --link-frequency 256 --miller 2 --sensitivity -70");
}

}  // namespace

void AddRfidCommandLine(CLI::App& program, Chosen& chosen, const RfidCommands& commands) {
    CLI::App* const rfid = program.add_subcommand("rfid", "Work with UHF RFID tags");
    rfid->require_subcommand(1);
    rfid->footer(
        "Examples:\n"
        "  qlctl rfid inventory\n"
        "  qlctl rfid read --bank tid --count 2\n"
        "  qlctl rfid query");
    AddInventory(*rfid, chosen, commands.inventory);
    AddRead(*rfid, chosen, commands.read);
    AddWrite(*rfid, chosen, commands.write);
    AddLock(*rfid, chosen, commands.lock);
    AddKill(*rfid, chosen, commands.kill);
    AddPower(*rfid, chosen, commands.power);
    AddQuery(*rfid, chosen, commands.query);
}

}  // namespace quarlin::qlctl

// SPDX-License-Identifier: Apache-2.0
#include "commands/barcode_options.h"

#include "view/byte_text.h"

#include <CLI/CLI.hpp>
#include <map>
#include <memory>

namespace quarlin::qlctl {
namespace {

using Options = std::shared_ptr<BarcodeOptions>;

constexpr const char* kTextHelp = "In texts, \\n, \\r, \\t, \\\\ and \\x1D stand for a byte; the texts are UTF-8.\n";

CLI::App* AddCommand(CLI::App& family, const char* name, const char* description, BarcodeCommand command,
                     Chosen& chosen, Options& options, const char* jsonHelp = "Print one JSON object") {
    options = std::make_shared<BarcodeOptions>();
    CLI::App* const added = family.add_subcommand(name, description);
    added->add_flag("--json", options->json, jsonHelp);
    added->callback([&chosen, command, options] {
        chosen.run = [command, options](Output& output) { return command(*options, output); };
    });
    return added;
}

void AddExternal(CLI::App& command, const Options& options) {
    command.add_flag_callback(
        "--external", [options] { options->scanners = Scanners::kExternal; },
        "An external scanner instead of the machine's own");
}

void AddTimeout(CLI::App& command, const Options& options, const char* names, const char* description) {
    command.add_option(names, options->timeout, description)
        ->check(CLI::Range(0.0, 1e6).description(""))
        ->type_name("S");
}

// An option or a positional whose text is taken apart by a function that gives nothing for a wrong one.
template <typename Parse, typename Take>
CLI::Option* AddParsed(CLI::App& command, const std::string& names, const char* typeName, const char* description,
                       const char* complaint, Parse parse, Take take) {
    return command
        .add_option_function<std::string>(
            names,
            [names, complaint, parse, take](const std::string& text) {
                const auto value = parse(text);
                if (!value) {
                    throw CLI::ValidationError(names, std::string(complaint) + ": " + text);
                }
                take(*value);
            },
            description)
        ->type_name(typeName);
}

// A text that the library knows as a member of the settings; never empty.
CLI::Option* AddText(CLI::App& command, const Options& options, const std::string& names, const char* typeName,
                     const char* description, std::string& place) {
    const auto parse = [](const std::string& text) {
        const auto bytes = Unescaped(text);
        return bytes && !bytes->empty() ? bytes : std::nullopt;
    };
    return AddParsed(command, names, typeName, description, "empty, or with an escape that is not known", parse,
                     [options, &place](const std::string& bytes) { place = bytes; });
}

void AddSettings(CLI::App& command, const Options& options) {
    ScanSettings& settings = options->settings;
    AddText(command, options, "--prefix", "TEXT", "Goes before each text", settings.prefix);
    AddText(command, options, "--suffix", "TEXT", "Goes behind each text", settings.suffix);
    command.add_flag("--inside", settings.isInside,
                     "Prefix and suffix next to the text, inside the fields of an Intermec engine");
    const auto takeRule = [options](const EditRule& rule) { options->settings.edit = rule; };
    CLI::Option* const replace = AddParsed(command, "--replace", "A=B", "Each A in a text becomes B",
                                           "not two texts with an equals sign between them", ParseReplace, takeRule);
    CLI::Option* const insert =
        AddParsed(command, "--insert", "N:TEXT", "TEXT goes behind character N; -N counts from the end",
                  "not a number but 0, a colon and a text", ParseInsert, takeRule);
    CLI::Option* const remove =
        AddParsed(command, "--delete", "TEXT[:START:END]", "Each TEXT goes, between the characters START and END",
                  "not a text, with two numbers behind it or without", ParseDelete, takeRule);
    replace->excludes(insert)->excludes(remove);
    insert->excludes(remove);
    command.add_flag("--sound", settings.hasSound, "Play a sound for each scan");
    command
        .add_option_function<std::string>(
            "--sound-file",
            [options](const std::string& path) {
                options->settings.soundFile = path;
                options->settings.hasSound = true;
            },
            "Play this WAVE file for each scan")
        ->type_name("PATH");
}

void AddList(CLI::App& barcode, Chosen& chosen, BarcodeCommand command) {
    Options options;
    CLI::App* const list = AddCommand(barcode, "list", "List the barcode scanners", command, chosen, options);
    AddExternal(*list, options);
    list->footer(
        "Examples:\n"
        "  qlctl barcode list\n"
        "  qlctl barcode list --external --json");
}

void AddWatch(CLI::App& barcode, Chosen& chosen, BarcodeCommand command) {
    Options options;
    CLI::App* const watch = AddCommand(barcode, "watch", "Show each scan as it comes, until Ctrl-C", command, chosen,
                                       options, "Print JSON lines, one object per scan");
    AddExternal(*watch, options);
    watch->add_option("--count", options->count, "End after so many scans")
        ->check(CLI::Range(1, 1000000000).description(""))
        ->type_name("N");
    AddTimeout(*watch, options, "--timeout,--for", "End after so many seconds; a failure when --count was not reached");
    AddSettings(*watch, options);
    watch->footer(std::string(kTextHelp) +
                  "\nExamples:\n"
                  "  qlctl barcode watch\n"
                  "  qlctl barcode watch --count 1 --timeout 30 --json\n"
                  "  qlctl barcode watch --prefix \"[\" --suffix \"]\\r\\n\" --insert 2:-");
}

void AddScan(CLI::App& barcode, Chosen& chosen, BarcodeCommand command) {
    Options options;
    CLI::App* const scan =
        AddCommand(barcode, "scan", "Read one code, as if the trigger were pulled", command, chosen, options);
    AddExternal(*scan, options);
    AddTimeout(*scan, options, "--timeout", "Seconds to wait for the code, 10 unless given");
    AddSettings(*scan, options);
    scan->footer(std::string(kTextHelp) +
                 "\nExamples:\n"
                 "  qlctl barcode scan\n"
                 "  qlctl barcode scan --timeout 3 --json --replace \"\\x1D=|\"");
}

void FinishEdit(CLI::App& mode, const Options& options, const char* example) {
    AddExternal(mode, options);
    AddTimeout(mode, options, "--timeout", "Seconds to wait for each reading, 10 unless given");
    mode.footer(std::string(kTextHelp) + "\nExamples:\n" + example);
}

void AddEdit(CLI::App& barcode, Chosen& chosen, BarcodeCommand command) {
    CLI::App* const edit = barcode.add_subcommand("edit", "Try an edit rule: read a code without and with it");
    edit->require_subcommand(1);
    edit->footer(
        "The code is read twice, because the library gives a text only as edited. The rule is forgotten when qlctl "
        "ends;\n"
        "watch and scan take rules, too.\n\n"
        "Examples:\n"
        "  qlctl barcode edit replace A AA\n"
        "  qlctl barcode edit insert 2 -\n"
        "  qlctl barcode edit delete 0 1 0");

    Options options;
    CLI::App* const replace =
        AddCommand(*edit, "replace", "Each TARGET in a text becomes CONTENT", command, chosen, options);
    options->settings.edit.mode = EditRule::kReplace;
    AddText(*replace, options, "target", "TARGET", "What is looked for", options->settings.edit.target)->required();
    AddText(*replace, options, "content", "CONTENT", "What is put in", options->settings.edit.content)->required();
    FinishEdit(*replace, options, "  qlctl barcode edit replace A AA");

    CLI::App* const insert = AddCommand(*edit, "insert", "CONTENT goes behind a character", command, chosen, options);
    options->settings.edit.mode = EditRule::kInsert;
    insert
        ->add_option("position", options->settings.edit.start, "Behind which character; -N has N characters behind it")
        ->type_name("N")
        ->required();
    AddText(*insert, options, "content", "CONTENT", "What is put in", options->settings.edit.content)->required();
    FinishEdit(*insert, options, "  qlctl barcode edit insert 2 -\n  qlctl barcode edit insert -1 -");

    CLI::App* const remove =
        AddCommand(*edit, "delete", "Each TARGET goes, between two characters", command, chosen, options);
    options->settings.edit.mode = EditRule::kDelete;
    AddText(*remove, options, "target", "TARGET", "What is looked for", options->settings.edit.target)->required();
    remove->add_option("start", options->settings.edit.start, "Behind which character; 0 is the beginning")
        ->type_name("START");
    remove->add_option("end", options->settings.edit.end, "Up to which character; 0 is the end")->type_name("END");
    FinishEdit(*remove, options, "  qlctl barcode edit delete 0\n  qlctl barcode edit delete 0 1 0");
}

void AddSwitch(CLI::App& symbology, const char* name, const char* description, Chosen& chosen, BarcodeCommand command,
               const char* example) {
    Options options;
    CLI::App* const added = AddCommand(symbology, name, description, command, chosen, options);
    AddExternal(*added, options);
    added
        ->add_option_function<std::vector<std::string>>(
            "symbology",
            [options](const std::vector<std::string>& names) {
                for (const std::string& given : names) {
                    const Symbology* const found = FindSymbology(given);
                    if (found == nullptr) {
                        throw CLI::ValidationError("symbology", "not one of 'qlctl barcode symbology list': " + given);
                    }
                    options->symbologies.push_back(found);
                }
            },
            "Name or value, as 'symbology list' shows it; letter case does not matter")
        ->type_name("NAME")
        ->required();
    added->footer(std::string("The setting lasts in the engine; the library keeps none.\n\nExamples:\n") + example);
}

void AddSymbology(CLI::App& barcode, Chosen& chosen, const BarcodeCommands& commands) {
    CLI::App* const symbology = barcode.add_subcommand("symbology", "Which kinds of codes the scanner reads");
    symbology->require_subcommand(1);
    symbology->footer(
        "Whether a symbology is enabled now, an engine cannot be asked.\n\n"
        "Examples:\n"
        "  qlctl barcode symbology list\n"
        "  qlctl barcode symbology enable QR Code39\n"
        "  qlctl barcode symbology disable 36");
    Options options;
    AddCommand(*symbology, "list", "List the symbologies that the library knows", commands.symbologies, chosen, options)
        ->footer(
            "Examples:\n"
            "  qlctl barcode symbology list\n"
            "  qlctl barcode symbology list --json");
    AddSwitch(*symbology, "enable", "Let the scanner read symbologies", chosen, commands.enable,
              "  qlctl barcode symbology enable QR \"MicroPDF 417\" 8");
    AddSwitch(*symbology, "disable", "Let the scanner pass symbologies over", chosen, commands.disable,
              "  qlctl barcode symbology disable Code39");
}

void AddTrigger(CLI::App& barcode, Chosen& chosen, BarcodeCommand command) {
    Options options;
    CLI::App* const trigger =
        AddCommand(barcode, "trigger", "Show the scanner's own trigger, or set it", command, chosen, options);
    AddExternal(*trigger, options);
    trigger
        ->add_option_function<std::string>(
            "--hardware", [options](const std::string& word) { options->hardwareTrigger = word == "on"; },
            "Switch the scanner's own trigger; Intermec engines only")
        ->check(CLI::IsMember({"on", "off"}).description(""))
        ->type_name("on|off");
    trigger->add_option("--mode", options->triggerMode, "How the trigger works; engines tell 0 from others alone")
        ->type_name("N");
    trigger->footer(
        "Both settings last in the engine.\n\n"
        "Examples:\n"
        "  qlctl barcode trigger\n"
        "  qlctl barcode trigger --hardware on --mode 0");
}

void AddFirmware(CLI::App& barcode, Chosen& chosen, BarcodeCommand command) {
    Options options;
    CLI::App* const firmware =
        AddCommand(barcode, "firmware", "Show the version of the scanner's firmware", command, chosen, options);
    AddExternal(*firmware, options);
    firmware->footer(
        "Examples:\n"
        "  qlctl barcode firmware\n"
        "  qlctl barcode firmware --json");
}

}  // namespace

void AddBarcodeCommandLine(CLI::App& program, Chosen& chosen, const BarcodeCommands& commands) {
    CLI::App* const barcode = program.add_subcommand("barcode", "Read barcodes");
    barcode->require_subcommand(1);
    barcode->footer(
        "Examples:\n"
        "  qlctl barcode list\n"
        "  qlctl barcode watch --count 1 --timeout 30\n"
        "  qlctl barcode symbology enable QR");
    AddList(*barcode, chosen, commands.list);
    AddWatch(*barcode, chosen, commands.watch);
    AddScan(*barcode, chosen, commands.scan);
    AddEdit(*barcode, chosen, commands.edit);
    AddSymbology(*barcode, chosen, commands);
    AddTrigger(*barcode, chosen, commands.trigger);
    AddFirmware(*barcode, chosen, commands.firmware);
}

}  // namespace quarlin::qlctl

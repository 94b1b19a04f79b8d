// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"
#include "sdk/camera_light.h"

#include <CLI/CLI.hpp>
#include <memory>

namespace quarlin::qlctl {
namespace {

struct LightOptions {
    bool json = false;
    int seconds = 0;
};

using Action = void (*)(CameraLight&, const LightOptions&);

// Every command ends with the light as the library tells it then.
ExitStatus Drive(Action action, const LightOptions& options, Output& output) {
    CameraLight light;
    action(light, options);
    const LightState state = light.State();
    output.Write(options.json ? LightJson(state) : LightText(state));
    return ExitStatus::kDone;
}

CLI::App* AddCommand(CLI::App& family, const char* name, const char* description, Action action, Chosen& chosen,
                     std::shared_ptr<LightOptions>& options) {
    options = std::make_shared<LightOptions>();
    CLI::App* const added = family.add_subcommand(name, description);
    added->add_flag("--json", options->json, "Print one JSON object");
    added->callback([&chosen, action, options] {
        chosen.run = [action, options](Output& output) { return Drive(action, *options, output); };
    });
    return added;
}

}  // namespace

void AddLightCommands(CLI::App& program, Chosen& chosen) {
    CLI::App* const light = program.add_subcommand("light", "Switch the camera light");
    light->require_subcommand(1);
    light->footer(
        "Every command switches the light off first, because the library does so when it is opened; 'status' "
        "therefore\n"
        "tells whether there is a light that obeys, not whether it was on before.\n\n"
        "Examples:\n"
        "  qlctl light on\n"
        "  qlctl light timer 10\n"
        "  qlctl light off");
    std::shared_ptr<LightOptions> options;

    AddCommand(
        *light, "on", "Switch the light on", [](CameraLight& it, const LightOptions&) { it.SwitchOn(); }, chosen,
        options)
        ->footer(
            "It stays on when qlctl has ended.\n\n"
            "Examples:\n"
            "  qlctl light on");

    AddCommand(
        *light, "off", "Switch the light off", [](CameraLight& it, const LightOptions&) { it.SwitchOff(); }, chosen,
        options)
        ->footer(
            "Examples:\n"
            "  qlctl light off");

    CLI::App* const timer = AddCommand(
        *light, "timer", "Switch the light on for some seconds",
        [](CameraLight& it, const LightOptions& given) { it.SwitchOnFor(given.seconds); }, chosen, options);
    timer->add_option("seconds", options->seconds, "Seconds, 1 and up; more than 254 count as 254")
        ->check(CLI::Range(1, 1000000000).description(""))
        ->type_name("N")
        ->required();
    timer->footer(
        "qlctl ends at once; the light goes off by itself.\n\n"
        "Examples:\n"
        "  qlctl light timer 10");

    AddCommand(
        *light, "status", "Show the light, which is switched off by that", [](CameraLight&, const LightOptions&) {},
        chosen, options)
        ->footer(
            "Examples:\n"
            "  qlctl light status\n"
            "  qlctl light status --json");
}

}  // namespace quarlin::qlctl

// SPDX-License-Identifier: Apache-2.0
// qlsim and qlsim-ctl as a user starts them, on the simulated machine's cables.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "edge/command_pipe_win.h"
#include "edge/system_error_win.h"
#include "programs_win.h"
#include "sentences.h"

namespace quarlin::sim {
namespace {

using testing::ApplicationPort;
using testing::Program;
using testing::TemporaryFile;

const std::string kPipe = "qlsim-test-" + std::to_string(GetCurrentProcessId());
constexpr std::chrono::seconds kPatience{20};

std::string Scenario(const std::string& port, const std::string& rest = "") {
    return "speed_factor = 10\n[[device]]\nkind = \"gps\"\nport = \"" + port +
           "\"\ncold_start = 0\nonly_2d = 0\nhot_start = 0\n" + rest;
}

std::vector<std::string> WithPipe(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--pipe", kPipe});
    return arguments;
}

// A qlsim that plays a scenario and answers on its pipe.
class Playing {
  public:
    explicit Playing(const std::string& scenario, std::vector<std::string> more = {})
        : file_(L"scenario.toml", scenario) {
        more.insert(more.begin(), file_.Path());
        program_.emplace(L"qlsim.exe", WithPipe(std::move(more)));
    }
    std::string Ask(const std::string& line) { return AskPipe(kPipe, line, kPatience); }
    Program& Process() { return *program_; }
    void Quit() {
        EXPECT_EQ("ok ending", Ask("quit"));
        EXPECT_EQ(0u, program_->Wait()) << program_->Output();
    }

  private:
    TemporaryFile file_;
    std::optional<Program> program_;
};

TEST(Qlsim, PlaysIntoTheCableAndDoesWhatItIsTold) {
    Playing playing(Scenario("COM4"));
    playing.Ask("devices");
    ApplicationPort port(L"COM3");
    ASSERT_TRUE(port.IsOpen());
    ASSERT_TRUE(port.ReadLine());  // the first one may have begun before the port was opened
    for (int i = 0; i < 30; ++i) {
        const auto line = port.ReadLine();
        ASSERT_TRUE(line);
        EXPECT_TRUE(testing::ChecksumIsRight(*line)) << *line;
    }
    const auto found = port.ReadUntil("$GNGGA");
    ASSERT_TRUE(found);
    EXPECT_EQ("1", testing::Fields(*found)[6]);

    EXPECT_EQ("ok no fix from the next epoch on", playing.Ask("gps lose-fix"));
    const auto lost = port.ReadUntil(",,,,,0,00");
    ASSERT_TRUE(lost);
    EXPECT_EQ("GNGGA", testing::Type(*lost));

    EXPECT_EQ("ok silent", playing.Ask("gps silence on"));
    EXPECT_EQ("ok sent 12 bytes", playing.Ask("gps send \"one two 3*\""));
    EXPECT_EQ("one two 3*", port.ReadUntil("one"));
    playing.Quit();
}

TEST(Qlsim, UnpluggingTheUsbCableTakesTheApplicationsPortAway) {
    Playing playing(Scenario("COM8"));
    ApplicationPort port(L"COM7");
    ASSERT_TRUE(port.IsOpen());
    ASSERT_TRUE(port.ReadUntil("GGA"));

    EXPECT_EQ("ok unplugged", playing.Ask("gps unplug"));
    EXPECT_TRUE(port.WaitForLoss());
    EXPECT_TRUE(testing::WaitUntilAbsent(L"COM7"));

    EXPECT_EQ("ok plugged in", playing.Ask("gps plug"));
    ApplicationPort again(L"COM7");
    ASSERT_TRUE(again.IsOpen());
    EXPECT_TRUE(again.ReadUntil("GGA"));
    playing.Quit();
    EXPECT_TRUE(testing::WaitUntilAbsent(L"COM7"));
}

TEST(Qlsim, ARunRepeatsByteForByteThroughTheCable) {
    // The application's end is open before the run, so that it hears all of it.
    ApplicationPort port(L"COM3");
    ASSERT_TRUE(port.IsOpen());
    const std::string text =
        "speed_factor = 0\n[[device]]\nkind = \"gps\"\nport = \"COM4\"\n[device.faults]\n"
        "bad_checksum = 0.1\n[[event]]\nat = 30\ndevice = \"gps\"\ncommand = \"send END\"\n";
    const auto run = [&](const char* seed) {
        Playing playing(text, {"--duration", "31", "--seed", seed});
        std::string bytes;
        while (const auto line = port.ReadLine()) {
            bytes += *line + "\n";
            if (*line == "END") {
                break;
            }
        }
        // What the last epoch still sends.
        EXPECT_TRUE(port.ReadUntil("$GNVTG"));
        EXPECT_EQ(0u, playing.Process().Wait()) << playing.Process().Output();
        return bytes;
    };
    const std::string first = run("5");
    EXPECT_GT(first.size(), 10000u);
    EXPECT_TRUE(first == run("5")) << "a run has to repeat";
    EXPECT_FALSE(first == run("6")) << "another seed has to make another run";
}

TEST(Qlsim, SeveralClientsTalkAtTheSameTime) {
    Playing playing(Scenario("COM6"));
    playing.Ask("devices");
    const auto connect = [] {
        const std::wstring path = L"\\\\.\\pipe\\" + Wide(kPipe);
        OwnedHandle pipe;
        while (!pipe && (WaitNamedPipeW(path.c_str(), testing::kPatience) || GetLastError() == ERROR_PIPE_BUSY)) {
            pipe = OwnedHandle(
                CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        }
        return pipe;
    };
    const auto talk = [](const OwnedHandle& pipe, const std::string& text, std::size_t replies) {
        DWORD count = 0;
        EXPECT_TRUE(WriteFile(pipe.get(), text.data(), static_cast<DWORD>(text.size()), &count, nullptr));
        std::string reply;
        char c = 0;
        while (replies > 0 && ReadFile(pipe.get(), &c, 1, &count, nullptr) && count == 1) {
            reply += c;
            replies -= c == '\n' ? 1 : 0;
        }
        return reply;
    };
    const OwnedHandle one = connect();
    const OwnedHandle other = connect();
    ASSERT_TRUE(one && other) << SystemMessage(GetLastError());
    EXPECT_EQ("ok noise 0.5\n", talk(one, "gps noise 0.5\n", 1));
    EXPECT_EQ("ok drop 0.5\nok drop 0\n", talk(other, "gps drop 0.5\r\ngps drop 0\n", 2));
    EXPECT_EQ("ok noise 0\n", talk(one, "gps noise 0\n", 1));
    const std::string status = playing.Ask("gps status");
    ASSERT_EQ(0u, status.find("ok {"));
    EXPECT_EQ(0, nlohmann::json::parse(status.substr(3))["noise"]);
    playing.Quit();  // with two clients still connected
}

TEST(Qlsim, ReportsABadScenarioWithItsPlaceAndStatus2) {
    TemporaryFile file(L"bad.toml", "seed = 1\n[[device]]\nkind = \"gps\"\nprot = \"COM4\"\n");
    Program program(L"qlsim.exe", {"--list-devices", file.Path()});
    EXPECT_EQ(2u, program.Wait());
    EXPECT_NE(std::string::npos,
              program.Output().find("bad.toml:4:1: a device has no key \"prot\"; did you mean \"port\"?"))
        << program.Output();
}

TEST(Qlsim, APortThatCannotBeOpenedEndsItWithStatus3) {
    TemporaryFile file(L"port.toml", Scenario("COM9"));
    Program program(L"qlsim.exe", WithPipe({file.Path()}));
    EXPECT_EQ(3u, program.Wait());
    EXPECT_NE(std::string::npos, program.Output().find("gps: the port COM9 cannot be opened: ")) << program.Output();
}

TEST(Qlsim, APipeThatIsTakenEndsItWithStatus3) {
    Playing playing(Scenario("COM6"));
    playing.Ask("devices");
    TemporaryFile file(L"second.toml", Scenario("COM4"));
    Program second(L"qlsim.exe", WithPipe({file.Path()}));
    EXPECT_EQ(3u, second.Wait());
    EXPECT_NE(std::string::npos, second.Output().find("another program answers on the pipe")) << second.Output();
    playing.Quit();
}

TEST(QlsimCtl, TellsAcceptedRefusedAndUnreachableApart) {
    {
        Program nobody(L"qlsim-ctl.exe", WithPipe({"--wait", "0", "devices"}));
        EXPECT_EQ(2u, nobody.Wait());
        EXPECT_NE(std::string::npos, nobody.Output().find("nobody answers on the pipe")) << nobody.Output();
    }
    Playing playing(Scenario("COM6"));
    Program accepted(L"qlsim-ctl.exe", WithPipe({"gps", "noise", "0.25"}));
    EXPECT_EQ(0u, accepted.Wait()) << accepted.Output();
    EXPECT_EQ("noise 0.25\r\n", accepted.Output());
    Program refused(L"qlsim-ctl.exe", WithPipe({"gps", "noise", "loud"}));
    EXPECT_EQ(1u, refused.Wait());
    EXPECT_EQ("qlsim-ctl: gps: \"loud\" is no probability from 0 to 1\r\n", refused.Output());
    playing.Quit();
}

}  // namespace
}  // namespace quarlin::sim

// SPDX-License-Identifier: Apache-2.0
#include "core/simulation.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <thread>

#include "memory_port.h"
#include "sentences.h"

namespace quarlin::sim {
namespace {

using testing::Lines;
using testing::MemoryPort;
using testing::Wire;
using Json = nlohmann::json;

const std::string kHarbour = std::string(QLSIM_SCENARIO_DIR) + "/harbour.nmea";

std::string Gps(const std::string& keys = "") {
    return "[[device]]\nkind = \"gps\"\nport = \"COM8\"\n" + keys;
}

std::string Event(double at, const std::string& command) {
    return "[[event]]\nat = " + std::to_string(at) + "\ndevice = \"gps\"\ncommand = '" + command + "'\n";
}

// A scenario played into a wire.
class Stage {
  public:
    explicit Stage(const std::string& text, std::optional<std::uint64_t> seed = {}) {
        log_.AddSink(logText_);
        SimulationOptions options;
        options.seed = seed;
        options.makePort = [this](const std::string&, std::uint32_t) { return std::make_unique<MemoryPort>(wire); };
        simulation.emplace(ReadScenario(text, "test.toml"), options, log_);
    }

    // To its end; the bytes that came out.
    std::string Play() {
        simulation->Start();
        simulation->WaitForEnd();
        simulation->Stop();
        return wire.Bytes();
    }
    Json Status() {
        const Reply reply = simulation->Execute("status gps");
        EXPECT_TRUE(reply.ok) << reply.text;
        return Json::parse(reply.text);
    }
    std::string LogText() const { return logText_.str(); }

    Wire wire;

  private:
    std::ostringstream logText_;
    Log log_;

  public:
    std::optional<Simulation> simulation;
};

std::string Play(const std::string& text, std::optional<std::uint64_t> seed = {}) {
    return Stage(text, seed).Play();
}

std::size_t Count(const std::vector<std::string>& lines, const std::string& start) {
    return static_cast<std::size_t>(
        std::count_if(lines.begin(), lines.end(), [&](const std::string& line) { return line.starts_with(start); }));
}

std::string FileBytes(const std::string& path) {
    std::ifstream stream(std::filesystem::u8path(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

const std::string kUnpaced = "speed_factor = 0\nduration = 20\n";

TEST(Simulation, PlaysExactlyTheEpochsOfItsDuration) {
    const auto lines = Lines(Play("speed_factor = 0\nduration = 10\n" + Gps("rate = 2\n")));
    EXPECT_EQ(20u, Count(lines, "$GNGGA"));
    EXPECT_EQ(40u, Count(lines, "$GNGSA"));
    EXPECT_EQ(20u, Count(lines, "$GNRMC"));
}

TEST(Simulation, ARunRepeatsByteForByteFaultsAndAll) {
    const std::string text = kUnpaced + Gps("[device.faults]\nnoise = 0.01\ndrop = 0.01\nbad_checksum = 0.2\n") +
                             Event(5, "lose-fix") + Event(7, "regain-fix") + Event(9, "satellites 5");
    const std::string first = Play(text);
    EXPECT_GT(first.size(), 5000u);
    EXPECT_EQ(first, Play(text));
    EXPECT_NE(first, Play(text, 2));
    EXPECT_EQ(Play(text, 2), Play("seed = 2\n" + text));
}

TEST(Simulation, TheClockOnTheWallChangesNothing) {
    const std::string rest =
        "duration = 20\n" + Gps() + Event(3.5, "drop 0.1") + Event(8, "unplug") + Event(11, "plug");
    EXPECT_EQ(Play("speed_factor = 0\n" + rest), Play("speed_factor = 100\n" + rest));
}

TEST(Simulation, AnotherDeviceLeavesTheFirstOneAsItWas) {
    // Both write to one wire here; one of them is unplugged from the start.
    const std::string second = "[[device]]\nkind = \"gps\"\nname = \"second\"\nport = \"COM6\"\nplugged = false\n";
    EXPECT_EQ(Play(kUnpaced + Gps()), Play(kUnpaced + Gps() + second));
}

TEST(Simulation, TheTimelineTakesEffectBeforeTheEpochOfItsTime) {
    const auto lines = Lines(Play(kUnpaced + Gps("cold_start = 0\nonly_2d = 0\nsentences = [\"GGA\"]\n") +
                                  Event(5, "lose-fix") + Event(8, "regain-fix")));
    ASSERT_EQ(20u, lines.size());
    for (std::size_t second = 0; second < lines.size(); ++second) {
        EXPECT_EQ(second >= 5 && second < 8 ? "0" : "1", testing::Fields(lines[second])[6]) << second;
    }
}

TEST(Simulation, SilenceKeepsThePortOpenAndUnpluggingClosesIt) {
    Stage silent(kUnpaced + Gps() + Event(5, "silence on") + Event(15, "silence off"));
    EXPECT_EQ(10u, Count(Lines(silent.Play()), "$GNGGA"));
    EXPECT_EQ(1, silent.wire.opened);

    Stage unplugged(kUnpaced + Gps() + Event(5, "unplug") + Event(15, "plug"));
    EXPECT_EQ(10u, Count(Lines(unplugged.Play()), "$GNGGA"));
    EXPECT_EQ(2, unplugged.wire.opened);
    EXPECT_EQ(2, unplugged.wire.closed);
}

TEST(Simulation, AReplayComesThroughByteForByte) {
    const std::string recording = FileBytes(kHarbour);
    ASSERT_GT(recording.size(), 5000u);
    const std::string keys = "cold_start = 0\n[device.faults]\nnoise = 1\n";
    const std::string played = Play("speed_factor = 0\nduration = 9\n" + Gps(keys) +
                                    Event(5, "replay " + kHarbour + " full-speed then-silent"));
    ASSERT_GT(played.size(), recording.size());
    EXPECT_EQ(recording, played.substr(played.size() - recording.size()));
}

TEST(Simulation, APacedReplayTakesTheTimeOfItsLineAndTheSimulationGoesOn) {
    // 7020 bytes at 9600 baud are 7.3 seconds: the epochs 5 to 12 give way.
    const auto lines =
        Lines(Play(kUnpaced + Gps("cold_start = 0\n") + Event(5, "replay " + kHarbour + " paced then-resume")));
    std::vector<std::string> times;
    for (const std::string& line : lines) {
        if (line.starts_with("$GNGGA")) {
            times.push_back(testing::Fields(line)[1].substr(4, 2));
        }
    }
    EXPECT_EQ((std::vector<std::string>{"00", "01", "02", "03", "04", "13", "14", "15", "16", "17", "18", "19"}),
              times);
    EXPECT_EQ(20u, Count(lines, "$GPGGA"));
}

TEST(Simulation, AReplayFileBesideTheScenarioIsFound) {
    Scenario scenario = ReadScenario(kUnpaced + Gps() + Event(1, "replay harbour.nmea full-speed then-silent"),
                                     std::string(QLSIM_SCENARIO_DIR) + "/test.toml");
    Wire wire;
    Log log;
    SimulationOptions options;
    options.makePort = [&wire](const std::string&, std::uint32_t) { return std::make_unique<MemoryPort>(wire); };
    Simulation simulation(std::move(scenario), options, log);
    simulation.Start();
    simulation.WaitForEnd();
    EXPECT_NE(std::string::npos, wire.Bytes().find(FileBytes(kHarbour)));
}

TEST(Simulation, ATimelineCommandThatCannotBeDoneIsLoggedAndTheRestGoesOn) {
    Stage stage(kUnpaced + Gps() + Event(5, "replay no-such-file.nmea"));
    EXPECT_EQ(20u, Count(Lines(stage.Play()), "$GNGGA"));
    EXPECT_NE(std::string::npos, stage.LogText().find("refused: the file \"no-such-file.nmea\" cannot be read"))
        << stage.LogText();
}

TEST(Simulation, RateZeroMeansAsFastAsThePortTakesIt) {
    const auto started = std::chrono::steady_clock::now();
    EXPECT_EQ(3600u, Count(Lines(Play("duration = 3600\n" + Gps("rate = 0\n"))), "$GNGGA"));
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::minutes(2));
}

TEST(Simulation, APortThatCannotBeOpenedEndsTheStart) {
    Stage stage(Gps());
    stage.wire.refuseOpen = true;
    try {
        stage.simulation->Start();
        FAIL() << "started";
    } catch (const DeviceError& error) {
        EXPECT_STREQ("gps: the port COM8 cannot be opened: no such cable", error.what());
    }
}

// Commands to a running simulation, in real time.
class RunningSimulation : public ::testing::Test {
  protected:
    RunningSimulation() : stage_("speed_factor = 20\n" + Gps("cold_start = 0\n")) { stage_.simulation->Start(); }

    Reply Do(const std::string& line) { return stage_.simulation->Execute(line); }
    void Expect(const std::string& line, const std::string& reply) { EXPECT_EQ(reply, Do(line).Line()) << line; }
    bool WaitForBytes(std::size_t more) {
        const std::size_t before = stage_.wire.Bytes().size();
        return stage_.wire.WaitFor([&](const Wire& wire) { return wire.bytes.size() >= before + more; });
    }

    Stage stage_;
};

TEST_F(RunningSimulation, AnswersEveryCommand) {
    Expect("gps lose-fix", "ok no fix from the next epoch on");
    Expect("gps regain-fix", "ok a fix again from the next epoch on");
    Expect("gps silence on", "ok silent");
    Expect("gps silence off", "ok talking");
    Expect("gps noise 0.5", "ok noise 0.5");
    Expect("gps drop 0.5", "ok drop 0.5");
    Expect("gps bad-checksum 0.5", "ok bad-checksum 0.5");
    Expect("gps satellites 4", "ok satellites 4");
    Expect("gps unplug", "ok unplugged");
    Expect("gps unplug", "ok unplugged already");
    Expect("gps send x", "error gps: the receiver is unplugged");
    Expect("gps replay " + kHarbour, "error gps: the receiver is unplugged");
    Expect("gps plug", "ok plugged in");
    Expect("gps plug", "ok plugged in already");
    Expect("gps send hello", "ok sent 7 bytes");
    Expect("gps replay nothing.nmea", "error gps: the file \"nothing.nmea\" cannot be read");
    Expect("gps replay " + kHarbour + " full-speed", "ok replaying 7020 bytes");
    Expect("devices", R"(ok [{"device":"gps","kind":"gps"}])");
    Expect("", "error the command is empty; \"help\" lists what there is");
    Expect("gsp unplug", "error there is no device or command \"gsp\"; did you mean \"gps\"?");
    Expect("devices all", "error \"devices\" takes no such arguments");
    Expect("status gips", "error there is no device \"gips\"; did you mean \"gps\"?");
    EXPECT_EQ(17u, Json::parse(Do("help").text).size());
    EXPECT_EQ(1u, Json::parse(Do("status").text)["devices"].size());
}

TEST_F(RunningSimulation, StatusTellsWhatHappened) {
    Do("gps noise 0.25");
    Do("gps lose-fix");
    ASSERT_TRUE(WaitForBytes(2000));
    const Json lost = stage_.Status();
    EXPECT_EQ("COM8", lost["port"]);
    EXPECT_EQ(0.25, lost["noise"]);
    EXPECT_EQ("none", lost["fix"]);
    EXPECT_EQ(true, lost["fix_denied"]);
    EXPECT_FALSE(lost.contains("latitude"));
    EXPECT_EQ(0, lost["satellites_used"]);
    Do("gps regain-fix");
    ASSERT_TRUE(WaitForBytes(2000));
    const Json found = stage_.Status();
    EXPECT_EQ("3d", found["fix"]);
    EXPECT_NEAR(48.2082, found["latitude"].get<double>(), 0.001);
    EXPECT_GT(found["bytes"].get<int>(), lost["bytes"].get<int>());
}

TEST_F(RunningSimulation, SendsOneLineAsItIs) {
    Do("gps silence on");
    Do("gps send \"$GPTXT,a b*00\"");
    Do("gps send-bytes half\\x7e");
    EXPECT_TRUE(stage_.wire.WaitFor([](const Wire& wire) { return wire.bytes.ends_with("$GPTXT,a b*00\r\nhalf~"); }));
}

TEST_F(RunningSimulation, AReaderWhoSleepsLosesWholeEpochsOnly) {
    {
        const std::lock_guard hold(stage_.wire.lock);
        stage_.wire.room = 0;
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (stage_.Status()["lost_sentences"] == 0) {
        ASSERT_LT(std::chrono::steady_clock::now(), deadline);
    }
    {
        const std::lock_guard hold(stage_.wire.lock);
        stage_.wire.room = std::numeric_limits<std::size_t>::max();
        stage_.wire.changed.notify_all();
    }
    ASSERT_TRUE(WaitForBytes(5000));
    for (const std::string& line : Lines(stage_.wire.Bytes())) {
        EXPECT_TRUE(testing::ChecksumIsRight(line)) << line;
    }
}

TEST_F(RunningSimulation, ACommandComesThroughWhileNobodyReads) {
    {
        const std::lock_guard hold(stage_.wire.lock);
        stage_.wire.room = 0;
    }
    Expect("gps replay " + kHarbour + " full-speed", "ok replaying 7020 bytes");
    Expect("gps unplug", "ok unplugged");
    EXPECT_EQ(nullptr, stage_.Status()["replaying"]);
}

TEST_F(RunningSimulation, ACableThatIsCutOffCountsAsUnplugged) {
    {
        const std::lock_guard hold(stage_.wire.lock);
        stage_.wire.gone = true;
    }
    ASSERT_TRUE(stage_.wire.WaitFor([](const Wire& wire) { return wire.closed == 1; }));
    EXPECT_EQ(false, stage_.Status()["plugged"]);
    {
        const std::lock_guard hold(stage_.wire.lock);
        stage_.wire.gone = false;
    }
    Expect("gps plug", "ok plugged in");
    EXPECT_TRUE(WaitForBytes(100));
}

TEST_F(RunningSimulation, ManyClientsAtATime) {
    std::vector<std::thread> clients;
    std::atomic<int> accepted = 0;
    for (int client = 0; client < 4; ++client) {
        clients.emplace_back([&] {
            for (int i = 0; i < 50; ++i) {
                accepted += Do(i % 2 == 0 ? "gps status" : "gps silence off").ok ? 1 : 0;
            }
        });
    }
    for (std::thread& client : clients) {
        client.join();
    }
    EXPECT_EQ(200, accepted);
}

TEST_F(RunningSimulation, QuitEndsItAndCommandsAfterTheStopAreRefused) {
    Expect("quit", "ok ending");
    stage_.simulation->WaitForEnd();
    stage_.simulation->Stop();
    EXPECT_EQ(stage_.wire.opened, stage_.wire.closed);
    Expect("gps unplug", "error gps: the device does not run");
}

}  // namespace
}  // namespace quarlin::sim

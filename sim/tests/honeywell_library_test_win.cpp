// SPDX-License-Identifier: Apache-2.0
// HEDC_RS.dll as programs find it.
#include <algorithm>
#include <array>
#include <atomic>

#include "scanner_library_win.h"
#include "support/resource_count_win.h"
#include "support/thread_count_win.h"

namespace quarlin::sim {
namespace {

using Function = HoneywellFunction;

constexpr const wchar_t* kLibrary = L"HEDC_RS.dll";

struct Event {
    std::uint32_t type;
    const std::uint8_t* data;
    std::uint32_t length;
    DWORD thread;
    std::string text;
    std::string behind;
};

// What the engine has called back with. There is one for all, because a callback has nothing of its own. Its lock makes
// no handle when threads meet at it, as the runtime's mutex does: handles are counted here.
class Events {
  public:
    void Add(Event event) {
        AcquireSRWLockExclusive(&lock_);
        events_.push_back(std::move(event));
        ReleaseSRWLockExclusive(&lock_);
    }
    std::vector<Event> Take() {
        AcquireSRWLockExclusive(&lock_);
        std::vector<Event> taken = std::exchange(events_, {});
        ReleaseSRWLockExclusive(&lock_);
        return taken;
    }
    std::size_t Count() {
        AcquireSRWLockExclusive(&lock_);
        const std::size_t count = events_.size();
        ReleaseSRWLockExclusive(&lock_);
        return count;
    }

  private:
    SRWLOCK lock_ = SRWLOCK_INIT;
    std::vector<Event> events_;
};

Events events;

std::int32_t Receive(std::uint32_t type, std::uint32_t, std::uint32_t, void* data, std::uint32_t length) {
    Event event{type, static_cast<std::uint8_t*>(data), length, GetCurrentThreadId(), {}, {}};
    if (data != nullptr) {
        event.text = static_cast<const char*>(data);
        event.behind.assign(static_cast<const char*>(data) + event.text.size() + 1, 5);
    }
    events.Add(std::move(event));
    return 0;
}

class HoneywellLibrary : public testing::Test {
  protected:
    HoneywellLibrary() { events.Take(); }

    std::uint16_t Initialize() {
        std::uint32_t out = 0;
        return library_.Call("HEDC_Initialize", "HKCU\\SOFTWARE\\Test", &out, 0u);
    }
    std::uint16_t SetPath(const std::string& name) {
        return library_.Call("HEDC_SetPathName", name.c_str(), static_cast<std::uint32_t>(name.size()));
    }
    std::uint16_t Command(const std::string& command) {
        return library_.Call("HEDC_SendMenuCommand", command.data(), static_cast<std::uint32_t>(command.size()),
                             answer_.data(), std::uint32_t{4096}, &answerLength_, 1500u);
    }
    std::uint16_t Version() {
        return library_.Call("HEDC_GetFirmwareVersion", answer_.data(), std::uint32_t{4096}, &answerLength_);
    }
    std::string Answer() const {
        return {reinterpret_cast<const char*>(answer_.data()), std::min(answerLength_, 4096u)};
    }
    std::uint16_t Device(std::uint32_t number) {
        std::fill(name_.begin(), name_.end(), '~');
        return library_.Call("HEDC_GetDeviceFromList", number, name_.data(), 1024u, &out_, text_.data(), 1024u, &out2_);
    }
    void Connect() {
        ASSERT_EQ(0, Initialize());
        ASSERT_EQ(0, library_.Call("HEDC_RegisterCallback", 1u, Receive));
        ASSERT_EQ(0, SetPath("N6603 on USB 1"));
        ASSERT_EQ(0, library_.Call("HEDC_Connect"));
    }
    static std::vector<Event> WaitForEvents(std::size_t count) {
        EXPECT_TRUE(WaitUntil([&] { return events.Count() >= count; }));
        return events.Take();
    }

    ScannerRecord<HoneywellState> record_;
    ScannerLibrary library_{kLibrary};
    std::array<std::uint8_t, 4096> answer_{};
    std::uint32_t answerLength_ = 0;
    std::array<char, 1025> name_{};
    std::array<char, 1025> text_{};
    std::uint32_t out_ = 0;
    std::uint32_t out2_ = 0;
};

TEST_F(HoneywellLibrary, RefusesAllBeforeItsTime) {
    std::uint32_t count = 0;
    EXPECT_EQ(kHoneywellNotInitialized, library_.Call("HEDC_Deinitialize"));
    EXPECT_EQ(kHoneywellNotInitialized, library_.Call("HEDC_Connect"));
    EXPECT_EQ(kHoneywellNotInitialized, library_.Call("HEDC_Disconnect", 0u));
    EXPECT_EQ(kHoneywellNotInitialized, library_.Call("HEDC_LimitToHoneywellDevices", 1u, 0u));
    EXPECT_EQ(kHoneywellNotInitialized, library_.Call("HEDC_GetNumberDevices", &count));
    EXPECT_EQ(kHoneywellNotInitialized, library_.Call("HEDC_RegisterCallback", 1u, Receive));
    EXPECT_EQ(kHoneywellNotInitialized, Device(0));
    EXPECT_EQ(kHoneywellNotInitialized, SetPath("N6603 on USB 1"));
    EXPECT_EQ(kHoneywellNotInitialized, Command("C39ENA1"));
    ASSERT_EQ(0, Initialize());
    EXPECT_EQ(kHoneywellAlreadyInitialized, Initialize());
    EXPECT_EQ(kHoneywellNoPath, library_.Call("HEDC_Connect"));
    EXPECT_EQ(kHoneywellNotConnected, library_.Call("HEDC_Disconnect", 0u));
    EXPECT_EQ(kHoneywellNotConnected, library_.Call("HEDC_StartReadingSession", 0u, 1u));
    EXPECT_EQ(kHoneywellNotConnected, library_.Call("HEDC_StopReadingSession", 0u, 0u));
    EXPECT_EQ(kHoneywellNotConnected, Command("C39ENA1"));
    EXPECT_EQ(kHoneywellNotConnected, Version());
    ASSERT_EQ(0, SetPath("N6603 on USB 1"));
    ASSERT_EQ(0, library_.Call("HEDC_Connect"));
    EXPECT_EQ(kHoneywellAlreadyConnected, library_.Call("HEDC_Connect"));
    EXPECT_EQ(0, library_.Call("HEDC_Disconnect", 0u));
    EXPECT_EQ(0, library_.Call("HEDC_Deinitialize"));
}

TEST_F(HoneywellLibrary, ListsDevices) {
    {
        const auto state = record_.Use();
        state->deviceCount = 3;
        state->devices[0].SetName("foreign");
        state->devices[0].foreign = 1;
        state->devices[1].SetName("broken");
        state->devices[1].status = 0x321;
        state->devices[2].SetName(std::string(1024, 'n').c_str());
        state->devices[2].out = 7;
        state->devices[2].out2 = 8;
        state->devices[2].text[0] = 't';
    }
    ASSERT_EQ(0, Initialize());
    std::uint32_t count = 0;
    EXPECT_EQ(0, library_.Call("HEDC_GetNumberDevices", &count));
    EXPECT_EQ(3u, count);
    EXPECT_EQ(0, Device(0));
    EXPECT_STREQ("foreign", name_.data());
    EXPECT_EQ(0, library_.Call("HEDC_LimitToHoneywellDevices", 1u, 0u));
    EXPECT_EQ(0, library_.Call("HEDC_GetNumberDevices", &count));
    EXPECT_EQ(2u, count);
    EXPECT_EQ(0x321, Device(0));
    EXPECT_EQ('~', name_[0]);
    EXPECT_EQ(0, Device(1));
    EXPECT_EQ(std::string(1024, 'n') + '~', std::string(name_.data(), name_.size()));
    EXPECT_STREQ("t", text_.data());
    EXPECT_EQ(7u, out_);
    EXPECT_EQ(8u, out2_);
    EXPECT_EQ(kHoneywellNoDevice, Device(2));
    record_.Use()->claimedCount = 4000000000;
    EXPECT_EQ(0, library_.Call("HEDC_GetNumberDevices", &count));
    EXPECT_EQ(4000000000, count);
}

TEST_F(HoneywellLibrary, ConnectsToAListedDeviceThatIsFree) {
    ASSERT_EQ(0, Initialize());
    EXPECT_EQ("HKCU\\SOFTWARE\\Test", std::string(record_.Use()->registryPath));
    ASSERT_EQ(0, SetPath("N6603 on USB"));
    EXPECT_EQ(kHoneywellNoDevice, library_.Call("HEDC_Connect"));
    ASSERT_EQ(0, SetPath("N6603 on USB 1"));
    EXPECT_EQ("N6603 on USB 1", std::string(record_.Use()->path));
    EXPECT_EQ(14u, record_.Use()->pathLength);
    record_.Use()->heldByEmulator = 1;
    EXPECT_EQ(kHoneywellHeld, library_.Call("HEDC_Connect"));
    record_.Use()->heldByEmulator = 0;
    EXPECT_EQ(0, library_.Call("HEDC_Connect"));
    EXPECT_EQ(GetCurrentProcessId(), record_.Use()->connected);
    EXPECT_EQ(0, library_.Call("HEDC_Disconnect", 0u));
    EXPECT_EQ(0u, record_.Use()->connected);
    // The path goes with the session.
    EXPECT_EQ(0, library_.Call("HEDC_Deinitialize"));
    ASSERT_EQ(0, Initialize());
    EXPECT_EQ(kHoneywellNoPath, library_.Call("HEDC_Connect"));
}

TEST_F(HoneywellLibrary, ObeysAndTellsItsVersion) {
    Connect();
    EXPECT_EQ(0, library_.Call("HEDC_StartReadingSession", 0u, 1u));
    EXPECT_EQ(1u, record_.Use()->reading);
    EXPECT_EQ(0, library_.Call("HEDC_StopReadingSession", 0u, 0u));
    EXPECT_EQ(0u, record_.Use()->reading);
    EXPECT_EQ(0, Command("E13ISR1"));
    EXPECT_EQ("E13ISR1.", Answer());
    EXPECT_EQ(1u, record_.Use()->menuCommands);
    record_.Use()->SetVersion("H 2", 3);
    EXPECT_EQ(0, Version());
    EXPECT_EQ("H 2", Answer());
    const std::string longVersion(4096, 'v');
    record_.Use()->SetVersion(longVersion.data(), longVersion.size());
    EXPECT_EQ(0, Version());
    EXPECT_EQ(longVersion, Answer());
    {
        const auto state = record_.Use();
        state->answersInstead[2] = {static_cast<std::uint32_t>(Function::kGetFirmwareVersion), 1, 2, 9999, {'o', 'k'}};
        state->answersInstead[3] = {static_cast<std::uint32_t>(Function::kSendMenuCommand), 1, 0, 0, {}};
    }
    EXPECT_EQ(0, Version());
    EXPECT_EQ(9999u, answerLength_);
    EXPECT_EQ('o', answer_[0]);
    EXPECT_EQ(0, Command("X"));
    EXPECT_EQ(0u, answerLength_);
    EXPECT_EQ(0, Command("X"));
    EXPECT_EQ("X.", Answer());
}

TEST_F(HoneywellLibrary, LogsWhoCalledWhatWithWhat) {
    Connect();
    library_.Call("HEDC_StartReadingSession", 5u, 1u);
    Command("AZTENA1");
    library_.Call("HEDC_Disconnect", 5u);
    const std::vector<EngineCall> calls = record_.Calls();
    ASSERT_EQ(7u, calls.size());
    const Function order[] = {Function::kInitialize, Function::kRegisterCallback,    Function::kSetPathName,
                              Function::kConnect,    Function::kStartReadingSession, Function::kSendMenuCommand,
                              Function::kDisconnect};
    for (std::size_t i = 0; i < calls.size(); ++i) {
        EXPECT_EQ(static_cast<std::uint32_t>(order[i]), calls[i].function) << i;
        EXPECT_EQ(GetCurrentThreadId(), calls[i].thread);
    }
    EXPECT_EQ("HKCU\\SOFTWARE\\Test", RequestOf(calls[0]));
    EXPECT_EQ(0, calls[0].arguments[1]);
    EXPECT_EQ(1, calls[1].arguments[0]);
    EXPECT_EQ(reinterpret_cast<std::intptr_t>(&Receive), calls[1].arguments[1]);
    EXPECT_EQ("N6603 on USB 1", RequestOf(calls[2]));
    EXPECT_EQ(14u, calls[2].requestLength);
    EXPECT_EQ(5, calls[4].arguments[0]);
    EXPECT_EQ(1, calls[4].arguments[1]);
    EXPECT_EQ("AZTENA1", RequestOf(calls[5]));
    EXPECT_EQ(4096, calls[5].arguments[0]);
    EXPECT_EQ(1500, calls[5].arguments[3]);
    EXPECT_EQ(8u, calls[5].answerLength);
    EXPECT_EQ(5, calls[6].arguments[0]);
}

TEST_F(HoneywellLibrary, RefusesWhatItIsTold) {
    for (std::size_t i = 0; i < kHoneywellFunctionCount; ++i) {
        const auto status = static_cast<std::uint16_t>(0x9000 + i);
        record_.Use()->Refuse(static_cast<Function>(i), status, 1);
        const std::string name = kHoneywellFunctionNames[i];
        std::uint16_t found = 0;
        if (name == "HEDC_Initialize") {
            found = Initialize();
        } else if (name == "HEDC_SetPathName") {
            found = SetPath("N6603 on USB 1");
        } else if (name == "HEDC_SendMenuCommand") {
            found = Command("X");
        } else if (name == "HEDC_GetFirmwareVersion") {
            found = Version();
        } else if (name == "HEDC_GetDeviceFromList") {
            found = Device(0);
        } else {
            // Refused before it looks at any argument.
            found = library_.Call(name.c_str(), 0u, 0u);
        }
        EXPECT_EQ(status, found) << name;
        EXPECT_EQ(0u, record_.Use()->refusals[i].count) << name;
    }
    EXPECT_EQ(0u, record_.Use()->initialized);
    EXPECT_EQ(kStatusDirt, library_.CallRaw("HEDC_BeepError"));
    Connect();
    record_.Use()->Refuse(Function::kSendMenuCommand, 6, 1, 1);
    EXPECT_EQ(0, Command("POSTAL7"));
    EXPECT_EQ(6, Command("RMMISC1"));
    EXPECT_EQ(0, Command("POSTAL0"));
    EXPECT_EQ(2u, record_.Use()->menuCommands);
}

TEST_F(HoneywellLibrary, CallsBackWithScansInOrder) {
    ASSERT_TRUE(AddScan(record_.Shared(), HoneywellScan("early", "]A0")));
    Connect();
    for (int i = 0; i < 200; ++i) {
        ASSERT_TRUE(AddScan(record_.Shared(), HoneywellScan("scan " + std::to_string(i), "")));
    }
    const std::vector<Event> found = WaitForEvents(201);
    ASSERT_EQ(201u, found.size());
    EXPECT_EQ("early", found[0].text);
    EXPECT_EQ(std::string("]A0\0\0", 5), found[0].behind);
    EXPECT_EQ(5u, found[0].length);
    EXPECT_EQ(1u, found[0].type);
    EXPECT_NE(GetCurrentThreadId(), found[0].thread);
    for (int i = 0; i < 200; ++i) {
        const Event& event = found[static_cast<std::size_t>(i) + 1];
        EXPECT_EQ("scan " + std::to_string(i), event.text);
        EXPECT_EQ(std::string(5, '\0'), event.behind);
        EXPECT_EQ(found[0].thread, event.thread);
        // Still there.
        EXPECT_STREQ(event.text.c_str(), reinterpret_cast<const char*>(event.data));
    }
    EXPECT_EQ(201u, record_.Unlocked().announcements.Count());
    EXPECT_EQ(0, library_.Call("HEDC_Disconnect", 0u));
    ASSERT_TRUE(AddScan(record_.Shared(), HoneywellScan("late")));
    EXPECT_EQ(0, library_.Call("HEDC_Deinitialize"));
    EXPECT_EQ(0u, events.Count());
    EXPECT_FALSE(record_.Use()->inbox.IsEmpty());
}

TEST_F(HoneywellLibrary, AnnouncesAsItIsTold) {
    Connect();
    ScanSlot scan = HoneywellScan("data");
    scan.claimed = 77;
    scan.eventType = 2;
    ASSERT_TRUE(AddScan(record_.Shared(), scan));
    scan = HoneywellScan("nothing");
    scan.flags = kScanNoData;
    ASSERT_TRUE(AddScan(record_.Shared(), scan));
    scan = HoneywellScan("silent");
    scan.flags = kScanSilent;
    ASSERT_TRUE(AddScan(record_.Shared(), scan));
    scan = HoneywellScan("last");
    scan.flags = kScanWhileDisconnecting;
    ASSERT_TRUE(AddScan(record_.Shared(), scan));
    const std::vector<Event> found = WaitForEvents(2);
    ASSERT_EQ(2u, found.size());
    EXPECT_EQ(2u, found[0].type);
    EXPECT_EQ(77u, found[0].length);
    EXPECT_EQ(nullptr, found[1].data);
    ASSERT_TRUE(WaitUntil([&] { return record_.Use()->inbox.IsEmpty(); }));
    EXPECT_EQ(0u, events.Count());
    EXPECT_EQ(0, library_.Call("HEDC_Disconnect", 0u));
    const std::vector<Event> last = events.Take();
    ASSERT_EQ(1u, last.size());
    EXPECT_EQ("last", last[0].text);
    EXPECT_EQ(GetCurrentThreadId(), last[0].thread);
}

TEST_F(HoneywellLibrary, SendsBurstsNoFurtherAheadThanAsked) {
    Connect();
    HoneywellState& record = record_.Unlocked();
    constexpr std::uint64_t kAhead = 3;
    ASSERT_TRUE(OrderBurst(record_.Shared(), HoneywellScan("########"), 500, kAhead, 0, 0, 8));
    for (std::uint64_t i = 0; i < 500;) {
        const std::vector<Event> found = WaitForEvents(1);
        ASSERT_FALSE(found.empty());
        ASSERT_LE(found.size(), kAhead);
        for (const Event& event : found) {
            ASSERT_EQ(std::to_string(100000000 + i++).substr(1), event.text);
            record.burst.CountHandled();
        }
    }
    EXPECT_TRUE(WaitUntil([&] { return record.burst.Done() == 1; }));
    EXPECT_EQ(500u, record.announcements.Count());
}

TEST_F(HoneywellLibrary, CanBeLeftFromItsCallback) {
    static const ScannerLibrary* library;
    static std::atomic<std::uint32_t> status;
    library = &library_;
    status = 0xFFFF;
    Connect();
    ASSERT_EQ(0, library_.Call(
                     "HEDC_RegisterCallback", 1u,
                     +[](std::uint32_t, std::uint32_t, std::uint32_t, void*, std::uint32_t) -> std::int32_t {
                         status = library->Call("HEDC_Deinitialize");
                         return 0;
                     }));
    ASSERT_TRUE(AddScan(record_.Shared(), HoneywellScan("leave")));
    ASSERT_TRUE(WaitUntil([&] { return status != 0xFFFF; }));
    EXPECT_EQ(0u, status);
    // And again.
    Connect();
    ASSERT_TRUE(AddScan(record_.Shared(), HoneywellScan("back")));
    EXPECT_EQ("back", WaitForEvents(1).at(0).text);
}

TEST_F(HoneywellLibrary, LeavesNothingBehind) {
    library_.Unload();
    const auto session = [&](bool takesLeave) {
        ScannerLibrary library(kLibrary);
        std::uint32_t out = 0;
        library.Call("HEDC_Initialize", "HKCU\\Test", &out, 0u);
        library.Call("HEDC_RegisterCallback", 1u, Receive);
        library.Call("HEDC_SetPathName", "N6603 on USB 1", 14u);
        ASSERT_EQ(0, library.Call("HEDC_Connect"));
        ASSERT_TRUE(AddScan(record_.Shared(), HoneywellScan("scan")));
        ASSERT_EQ(1u, WaitForEvents(1).size());
        if (takesLeave) {
            ASSERT_EQ(0, library.Call("HEDC_Deinitialize"));
        }
    };
    session(true);
    session(false);
    const test::ResourceCount before = test::CountResources();
    const std::size_t threads = test::CountThreads();
    for (int i = 0; i < 5; ++i) {
        session(true);
        EXPECT_EQ(nullptr, GetModuleHandleW(kLibrary));
    }
    EXPECT_EQ(before, test::CountResources());
    EXPECT_EQ(threads, test::CountThreads());
    for (int i = 0; i < 5; ++i) {
        session(false);
        EXPECT_EQ(nullptr, GetModuleHandleW(kLibrary));
        EXPECT_EQ(0u, record_.Use()->connected);
    }
    EXPECT_EQ(before.handles, test::CountResources().handles);
    EXPECT_EQ(threads, test::CountThreads());
}

TEST_F(HoneywellLibrary, ComesInVariantsThatLackAFunction) {
    for (const std::string missing : kHoneywellFunctionNames) {
        const ScannerLibrary variant(VariantPath(missing, kLibrary).c_str());
        for (const char* const name : kHoneywellFunctionNames) {
            EXPECT_EQ(name != missing, variant.Has(name)) << name << " without " << missing;
        }
    }
}

}  // namespace
}  // namespace quarlin::sim

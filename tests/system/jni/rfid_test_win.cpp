// SPDX-License-Identifier: Apache-2.0
// A simulated RFID reader used from Java, where its handle is a number of 32 bits.
#include <gtest/gtest.h>

#include <windows.h>

extern "C" {
#include <hidsdi.h>
}

#include <cstdint>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "jni/java_library_win.h"
#include "rfid/rfid_reader_win.h"
#include "stand_in_vm.h"
#include "support/import_hook_win.h"
#include "support/resource_count_win.h"

#include "com_norvane_quarlin_uhfrfid_CoreNatives.h"
#include "com_norvane_quarlin_uhfrfid_UhfRfidNativeBase.h"

namespace quarlin::test {
namespace {

constexpr const char* kNatives = "com/norvane/quarlin/uhfrfid/UhfRfidNativeBase";
constexpr const char* kException = "com/norvane/quarlin/uhfrfid/RfidException";

#define RFID(method) QUARLIN_NATIVE(library_, uhfrfid_UhfRfidNativeBase_QLUHFRFID_1##method)

class JavaRfid : public ::testing::Test {
  protected:
    JavaRfid() {
        vm_.DefineClass(kNatives);
        vm_.DefineException(kException);
        NativeCall call(vm_);
        QUARLIN_NATIVE(library_, uhfrfid_CoreNatives_nInit)(call.Env(), call.Class(kNatives), call.Class(kException));
    }

    // The method's result. Fails the test when it throws.
    template <typename Method, typename... Arguments>
    jint Done(Method* method, Arguments... arguments) {
        NativeCall call(vm_);
        const jint result = method(call.Env(), call.Class(kNatives), arguments...);
        EXPECT_EQ(call.Thrown(), std::nullopt);
        return result;
    }
    template <typename Method, typename... Arguments>
    std::optional<JavaException> ThrownBy(Method* method, Arguments... arguments) {
        NativeCall call(vm_);
        method(call.Env(), call.Class(kNatives), arguments...);
        return call.Thrown();
    }
    static JavaException Unexpected(const std::string& name) {
        return {kException, "Unexpected behaviour encountered," + name};
    }

    struct Found {
        std::optional<JavaException> thrown;
        std::string id;
        jint signal;
    };
    template <typename Method>
    Found Find(Method* method, jint reader, std::size_t room = 64) {
        const JavaRef tagId = vm_.Bytes(std::vector<std::uint8_t>(room));
        const JavaRef length = vm_.Ints({static_cast<jint>(room)});
        const JavaRef signal = vm_.Ints({77});
        NativeCall call(vm_);
        method(call.Env(), call.Class(kNatives), reader, call.Pass<jbyteArray>(tagId), call.Pass<jintArray>(length),
               call.Pass<jintArray>(signal));
        std::vector<std::uint8_t> bytes = BytesOf(tagId);
        bytes.resize(static_cast<std::size_t>(IntsOf(length)[0]));
        return {call.Thrown(), sim::HexText(bytes), IntsOf(signal)[0]};
    }

    const RfidReaderTurn turn_;
    StandInVm vm_;
    const JavaLibrary library_;
};

TEST_F(JavaRfid, ReaderIsOpenedUsedAndClosed) {
    TestReader reader;
    const jint handle = Done(RFID(OpenReader));
    EXPECT_NE(handle, 0);
    EXPECT_NE(handle, -1);
    EXPECT_EQ(Done(RFID(SetPower), handle, jint{5}), 0);
    EXPECT_EQ(Done(RFID(GetPower), handle), 5);
    EXPECT_EQ(Done(RFID(SetLinkFreqForQuery), handle, jint{256}), 0);
    EXPECT_EQ(Done(RFID(GetLinkFreqForQuery), handle), 256);
    EXPECT_EQ(Done(RFID(SetSensitivityForQuery), handle, jint{-70}), 0);
    EXPECT_EQ(Done(RFID(GetSensitivityForQuery), handle), -70);
    EXPECT_EQ(Done(RFID(CloseReader), handle), 0);
    EXPECT_EQ(ThrownBy(RFID(GetPower), handle), Unexpected("QLERR_UHFRFID_INVALID_HANDLE"));
}

TEST_F(JavaRfid, InventoryFillsJavasArraysUntilThereAreNoMoreTags) {
    TestReader reader;
    const jint handle = Done(RFID(OpenReader));
    const Found first = Find(RFID(GetFirstTag), handle);
    EXPECT_EQ(first.thrown, std::nullopt);
    EXPECT_EQ(first.id, kLabelId);
    EXPECT_EQ(first.signal, -48);
    const Found second = Find(RFID(GetNextTag), handle);
    EXPECT_EQ(second.id, "3000" + kCrateEpc);
    EXPECT_EQ(second.signal, -66);
    const Found none = Find(RFID(GetNextTag), handle);
    EXPECT_EQ(none.thrown, Unexpected("QLERR_UHFRFID_NO_TAGS"));
    // Nothing was written.
    EXPECT_EQ(none.id, std::string(128, '0'));
    EXPECT_EQ(none.signal, 77);
    EXPECT_EQ(Find(RFID(GetFirstTag), handle, 13).thrown, Unexpected("QLERR_UHFRFID_BUFFERTOOSMALL"));
    EXPECT_EQ(Find(RFID(GetFirstTag), handle, 256).thrown,
              (JavaException{"java/lang/IllegalArgumentException", "Invalid Argument"}));
    EXPECT_EQ(Done(RFID(CloseReader), handle), 0);
}

TEST_F(JavaRfid, TagIsSelectedReadAndWritten) {
    TestReader reader;
    const jint handle = Done(RFID(OpenReader));
    const JavaRef id = vm_.Bytes(Hex(kLabelId));
    const JavaRef password = vm_.Bytes(Hex("0000AABB"));
    const JavaRef words = vm_.Bytes(std::vector<std::uint8_t>(10, 0xEE));
    NativeCall call(vm_);
    const auto self = call.Class(kNatives);
    auto* const givenPassword = call.Pass<jbyteArray>(password);
    auto* const givenWords = call.Pass<jbyteArray>(words);
    ASSERT_EQ(RFID(SelectTag)(call.Env(), self, handle, call.Pass<jbyteArray>(id), 14), 0);
    ASSERT_EQ(RFID(ReadTag)(call.Env(), self, handle, 3, 0, givenPassword, 4, givenWords, 4), 0);
    ASSERT_EQ(call.Thrown(), std::nullopt);
    EXPECT_EQ(sim::HexText(BytesOf(words)), "0001020304050607EEEE");

    auto* const text = call.Pass<jbyteArray>(vm_.Bytes(Hex("CAFE1234")));
    ASSERT_EQ(RFID(WriteTag)(call.Env(), self, handle, 3, 1, givenPassword, 4, text, 2), 0);
    ASSERT_EQ(RFID(ReadTag)(call.Env(), self, handle, 3, 0, givenPassword, 4, givenWords, 4), 0);
    ASSERT_EQ(call.Thrown(), std::nullopt);
    EXPECT_EQ(sim::HexText(BytesOf(words)), "0001CAFE12340607EEEE");
    EXPECT_EQ(call.Locals(), 0);
    ASSERT_EQ(RFID(CloseReader)(call.Env(), self, handle), 0);
}

TEST_F(JavaRfid, WithoutAReaderGivesTheInvalidHandleAndThrows) {
    NativeCall call(vm_);
    EXPECT_EQ(RFID(OpenReader)(call.Env(), call.Class(kNatives)), -1);
    EXPECT_EQ(call.Thrown(), Unexpected("QLERR_UHFRFID_DEVICENOTFOUND"));
}

TEST_F(JavaRfid, OfManyRoundsLeavesNothing) {
    TestReader reader;
    const auto rounds = [&](int count) {
        for (int i = 0; i < count; ++i) {
            const jint handle = Done(RFID(OpenReader));
            EXPECT_EQ(Find(RFID(GetFirstTag), handle).id, kLabelId);
            EXPECT_EQ(Done(RFID(CloseReader), handle), 0);
            reader->ClearLog();
        }
    };
    rounds(10);
    const std::size_t handles = CountOpenHandles();
    rounds(50);
    // The simulated reader makes a handle for good now and then, when its threads meet.
    EXPECT_LE(CountOpenHandles(), handles + 4);
    EXPECT_EQ(vm_.References().locals, 0);
    EXPECT_EQ(vm_.References().globals, 1);
}

// --- a handle whose highest bit of 32 is set ---

// The system's handle goes by another value from the opening on. Whatever the library does with it is done to the
// system's one; what it calls the handle is kept.
const HANDLE kHighHandle = reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(-0x7FFFEDCC));  // 0x80001234
HANDLE systemHandle = nullptr;
std::set<std::string> usedBy;

HANDLE ToSystem(HANDLE handle, const char* user) {
    if (handle != kHighHandle) {
        return handle;
    }
    usedBy.insert(user);
    return systemHandle;
}

HANDLE WINAPI OpenHigh(const char* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security, DWORD creation,
                       DWORD flags, HANDLE like) {
    HANDLE const opened = CreateFileA(path, access, share, security, creation, flags, like);
    if (opened == INVALID_HANDLE_VALUE || (access & GENERIC_WRITE) == 0) {
        return opened;
    }
    systemHandle = opened;
    return kHighHandle;
}

BOOLEAN WINAPI GetPreparsedHigh(HANDLE handle, PHIDP_PREPARSED_DATA* data) {
    return SystemFunction<BOOLEAN WINAPI(HANDLE, PHIDP_PREPARSED_DATA*)>("hid.dll", "HidD_GetPreparsedData")(
        ToSystem(handle, "HidD_GetPreparsedData"), data);
}

BOOLEAN WINAPI SendHigh(HANDLE handle, void* report, ULONG size) {
    return SystemFunction<BOOLEAN WINAPI(HANDLE, void*, ULONG)>("hid.dll", "HidD_SetOutputReport")(
        ToSystem(handle, "HidD_SetOutputReport"), report, size);
}

BOOL WINAPI ReadHigh(HANDLE handle, void* buffer, DWORD size, DWORD* read, OVERLAPPED* overlapped) {
    return ReadFile(ToSystem(handle, "ReadFile"), buffer, size, read, overlapped);
}

BOOL WINAPI CloseHigh(HANDLE handle) {
    return CloseHandle(ToSystem(handle, "CloseHandle"));
}

TEST_F(JavaRfid, HandleWithTheHighestBitComesBackToTheSystemAsItWas) {
    TestReader reader;
    usedBy.clear();
    const ImportHook open("KERNEL32.dll", "CreateFileA", &OpenHigh);
    const ImportHook preparsed("HID.DLL", "HidD_GetPreparsedData", &GetPreparsedHigh);
    const ImportHook send("HID.DLL", "HidD_SetOutputReport", &SendHigh);
    const ImportHook read("KERNEL32.dll", "ReadFile", &ReadHigh);
    const ImportHook close("KERNEL32.dll", "CloseHandle", &CloseHigh);

    const jint handle = Done(RFID(OpenReader));
    EXPECT_EQ(static_cast<std::uint32_t>(handle), 0x80001234U);
    EXPECT_LT(handle, 0);
    EXPECT_EQ(Done(RFID(SetPower), handle, jint{9}), 0);
    EXPECT_EQ(Find(RFID(GetFirstTag), handle).id, kLabelId);
    EXPECT_EQ(usedBy, (std::set<std::string>{"HidD_GetPreparsedData", "HidD_SetOutputReport", "ReadFile"}));
    EXPECT_EQ(Done(RFID(CloseReader), handle), 0);
    EXPECT_TRUE(usedBy.contains("CloseHandle"));
    // It was the reader's own: the reader can be opened anew, which it cannot while it is open.
    EXPECT_EQ(Done(RFID(OpenReader)), handle);
    EXPECT_EQ(Done(RFID(CloseReader), handle), 0);
}

}  // namespace
}  // namespace quarlin::test

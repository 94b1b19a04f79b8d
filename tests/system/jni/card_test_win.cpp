// SPDX-License-Identifier: Apache-2.0
// Card readers as Java lists and enables them, and a callback class that is not what it should be.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "jni/java_card_test_win.h"
#include "support/import_hook_win.h"

namespace quarlin::test {
namespace {

class JavaCardReaders : public JavaCardTest {};

TEST_F(JavaCardReaders, AreListedWithTheirNames) {
    TestReader reader(WithSerial("A1B2C3"));
    library_ = std::make_unique<JavaLibrary>();
    ASSERT_EQ(Initialize(), std::nullopt);
    MagStripeReaderInfo info{};
    int count = 1;
    ASSERT_EQ(library_->QLMSR_GetMagStripeDevices(&info, &count), QLERR_OK);

    const std::vector<JavaRef> readers = Readers();
    ASSERT_EQ(readers.size(), 1U);
    const std::vector<JavaValue>& arguments = readers[0]->arguments;
    ASSERT_EQ(arguments.size(), 6U);
    EXPECT_EQ(std::get<jint>(arguments[0]), info.index);
    EXPECT_EQ(TextOf(std::get<JavaRef>(arguments[1])), "MAGTEK(USB)");
    EXPECT_EQ(TextOf(std::get<JavaRef>(arguments[2])), "A1B2C3");
    EXPECT_FALSE(TextOf(std::get<JavaRef>(arguments[3])).empty());
    EXPECT_EQ(std::get<jboolean>(arguments[4]) != JNI_FALSE, info.encryptionEnabled != 0);
    EXPECT_EQ(std::get<JavaRef>(arguments[5]), magTek_);
}

TEST_F(JavaCardReaders, AreAllListed) {
    std::vector<std::unique_ptr<TestReader>> plugged;
    for (int i = 0; i < 3; ++i) {
        plugged.push_back(std::make_unique<TestReader>(WithSerial("SN" + std::to_string(i))));
    }
    library_ = std::make_unique<JavaLibrary>();
    ASSERT_EQ(Initialize(), std::nullopt);
    EXPECT_EQ(Readers().size(), 3U);
}

TEST_F(JavaCardReaders, WithoutOneAreAnEmptyArrayAndEnableFails) {
    library_ = std::make_unique<JavaLibrary>();
    ASSERT_EQ(Initialize(), std::nullopt);
    EXPECT_TRUE(Readers().empty());
    const QLerr flat = library_->QLMSR_Enable();
    const Failure failure = library_->FetchLastError();
    ASSERT_NE(flat, QLERR_OK);
    const auto thrown = Enable();
    ASSERT_NE(thrown, std::nullopt);
    EXPECT_EQ(thrown->message, failure.text);
    EXPECT_EQ(result_, flat);
}

TEST_F(JavaCardReaders, AreFreedWithTheLibrary) {
    TestReader reader;
    for (int round = 1; round <= 3; ++round) {
        Begin();
        EXPECT_EQ(Disable(), std::nullopt);
        EXPECT_EQ(Uninitialize(), std::nullopt);
        library_.reset();
        ASSERT_TRUE(WaitUntil([] { return !IsLibraryLoaded(); }));
        const ReferenceCounts references = vm_.References();
        EXPECT_EQ(references.globals, 2 * round);
        EXPECT_EQ(references.locals, 0);
        EXPECT_EQ(vm_.Threads().attached, 0);
    }
}

// --- the message box ---

struct ShownBox {
    HWND owner;
    std::string text;
    std::string caption;
    UINT flags;

    bool operator==(const ShownBox&) const = default;
};

std::vector<ShownBox> shownBoxes;

int WINAPI NoteMessageBox(HWND owner, const char* text, const char* caption, UINT flags) {
    shownBoxes.push_back({owner, text, caption, flags});
    return IDOK;
}

class JavaMissingSwipeMethod : public JavaCardTest {
  protected:
    static constexpr const char* kDeaf = "com/norvane/quarlin/msr/Deaf";

    JavaMissingSwipeMethod() {
        // Has a method of that name, which takes something else.
        vm_.DefineClass(kDeaf).StaticMethod("onMagStripeSwipe", "(Ljava/lang/Object;)V");
    }
};

TEST_F(JavaMissingSwipeMethod, IsShownInAMessageBoxAndTheReaderIsInitialised) {
    TestReader reader;
    library_ = std::make_unique<JavaLibrary>();
    shownBoxes.clear();
    const ImportHook hook("USER32.dll", "MessageBoxA", &NoteMessageBox);
    EXPECT_EQ(Initialize(kDeaf), std::nullopt);
    EXPECT_EQ(result_, 0);
    EXPECT_EQ(shownBoxes,
              std::vector<ShownBox>({{nullptr, "Unable to find callback event!", "MessageBox", UINT{MB_OK}}}));
    EXPECT_EQ(vm_.References().globals, 2);
    ASSERT_EQ(Readers().size(), 1U);
    EXPECT_EQ(Enable(), std::nullopt);

    // Swipes are read, and reach nobody.
    reader.Swipe();
    Await("the delivery", [&] { return vm_.Threads().detaches == 1; });
    EXPECT_EQ(Count(), 0U);
}

TEST_F(JavaMissingSwipeMethod, IsNotShownWhenItIsThere) {
    library_ = std::make_unique<JavaLibrary>();
    shownBoxes.clear();
    const ImportHook hook("USER32.dll", "MessageBoxA", &NoteMessageBox);
    EXPECT_EQ(Initialize(), std::nullopt);
    EXPECT_TRUE(shownBoxes.empty());
}

struct FoundBox {
    HWND window = nullptr;
};

BOOL CALLBACK LookForBox(HWND window, LPARAM found) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    char caption[64] = "";
    GetWindowTextA(window, caption, static_cast<int>(sizeof caption));
    if (process != GetCurrentProcessId() || std::string(caption) != "MessageBox") {
        return TRUE;
    }
    reinterpret_cast<FoundBox*>(found)->window = window;
    return FALSE;
}

// The real one: the call waits for the user.
TEST_F(JavaMissingSwipeMethod, WaitsForTheUser) {
    library_ = std::make_unique<JavaLibrary>();
    std::atomic<bool> initialized = false;
    std::thread user([&] {
        FoundBox box;
        EXPECT_TRUE(WaitUntil([&] {
            EnumWindows(&LookForBox, reinterpret_cast<LPARAM>(&box));
            return box.window != nullptr;
        }));
        EXPECT_FALSE(initialized);
        EXPECT_EQ(GetWindow(box.window, GW_OWNER), nullptr);
        PostMessageW(box.window, WM_COMMAND, IDOK, 0);
    });
    EXPECT_EQ(Initialize(kDeaf), std::nullopt);
    initialized = true;
    user.join();
    EXPECT_EQ(result_, 0);
}

}  // namespace
}  // namespace quarlin::test

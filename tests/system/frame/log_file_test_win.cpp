// SPDX-License-Identifier: Apache-2.0
// The EnableLog setting and the log file: looked at from outside, by programs that load the library in every state of
// registry and folders.
#include <gtest/gtest.h>

#include <shlobj.h>
#include <windows.h>

#include <array>
#include <cstdio>
#include <functional>
#include <string>

#include "frame/leak_rounds_win.h"
#include "support/child_process_win.h"
#include "support/import_hook_win.h"
#include "support/loaded_library_win.h"
#include "support/machine_state_win.h"
#include "support/owners_win.h"
#include "support/system_text_win.h"

namespace quarlin::test {
namespace {

// The common folders, cleared of the library's for the length of a test.
class CommonFolders {
  public:
    CommonFolders() : norvane_(CommonApplicationData() + L"\\Norvane"), aside_(norvane_ + L".aside") {
        wasThere_ = MoveFileW(norvane_.c_str(), aside_.c_str()) != 0;
    }
    CommonFolders(const CommonFolders&) = delete;
    CommonFolders& operator=(const CommonFolders&) = delete;
    ~CommonFolders() {
        SetFileAttributesW(Log().c_str(), FILE_ATTRIBUTE_NORMAL);
        DeleteFileW(Log().c_str());
        RemoveDirectoryW(Log().c_str());
        DeleteFileW(Folder().c_str());
        RemoveDirectoryW(Folder().c_str());
        RemoveDirectoryW(norvane_.c_str());
        if (wasThere_) {
            MoveFileW(aside_.c_str(), norvane_.c_str());
        }
    }

    const std::wstring& Parent() const { return norvane_; }
    std::wstring Folder() const { return norvane_ + L"\\QLSDK"; }
    std::wstring Log() const { return Folder() + L"\\qlsdk.log"; }

    void MakeParent() const { CreateDirectoryW(norvane_.c_str(), nullptr); }
    void MakeFolder() const {
        MakeParent();
        CreateDirectoryW(Folder().c_str(), nullptr);
    }

    static std::wstring CommonApplicationData() {
        std::array<wchar_t, MAX_PATH> path{};
        SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA, nullptr, 0, path.data());
        return path.data();
    }

  private:
    std::wstring norvane_;
    std::wstring aside_;
    bool wasThere_;
};

bool Exists(const std::wstring& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool IsFolder(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// What the library asks the system for while it is loaded, printed by the child that loads it.
HRESULT WINAPI WatchFolder(HWND owner, int folder, HANDLE token, DWORD flags, LPWSTR path) {
    std::printf("folder %d\n", folder);
    return SHGetFolderPathW(owner, folder, token, flags, path);
}
HRESULT WINAPI NoFolder(HWND, int, HANDLE, DWORD, LPWSTR) {
    return E_FAIL;
}
HRESULT WINAPI LongFolder(HWND, int, HANDLE, DWORD, LPWSTR path) {
    wcscpy(path, std::wstring(MAX_PATH - 1, L'x').c_str());
    return S_OK;
}
BOOL WINAPI WatchDirectory(LPCWSTR path, LPSECURITY_ATTRIBUTES attributes) {
    std::printf("directory %s\n", ToUtf8(path).c_str());
    return CreateDirectoryW(path, attributes);
}
HANDLE WINAPI WatchFile(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                        DWORD attributes, HANDLE model) {
    std::printf("file %s access %lx share %lx disposition %lx attributes %lx\n", ToUtf8(path).c_str(), access, share,
                disposition, attributes);
    return CreateFileW(path, access, share, security, disposition, attributes, model);
}
DWORD WINAPI WatchPosition(HANDLE file, LONG distance, PLONG high, DWORD method) {
    const DWORD position = SetFilePointer(file, distance, high, method);
    std::printf("position %ld from %lu is %lu\n", distance, method, position);
    return position;
}
BOOL WINAPI WatchWrite(HANDLE, LPCVOID, DWORD bytes, LPDWORD, LPOVERLAPPED) {
    std::printf("wrote %lu\n", bytes);
    return FALSE;
}

DWORD ErrorOfOpening(const std::wstring& path, DWORD access, DWORD share) {
    const UniqueHandle file(
        CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return file.Valid() ? ERROR_SUCCESS : GetLastError();
}

// Whether another program may read, and may write, the log.
void PrintSharing(const char* when) {
    const std::wstring log = CommonFolders::CommonApplicationData() + L"\\Norvane\\QLSDK\\qlsdk.log";
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    std::printf("%s: read %lu write %lu\n", when, ErrorOfOpening(log, GENERIC_READ, kShareAll),
                ErrorOfOpening(log, GENERIC_WRITE, kShareAll));
}

// Loads the library, uses it, unloads it. Argument: how the lookup of the common folder goes.
QUARLIN_CHILD_MODE(load_and_watch_log) {
    LoadTimeHooks hooks;
    const std::string lookup = arguments.empty() ? "watch" : arguments[0];
    hooks.Add("SHELL32.dll", "SHGetFolderPathW",
              lookup == "fail" ? &NoFolder : (lookup == "long" ? &LongFolder : &WatchFolder));
    hooks.Add("KERNEL32.dll", "CreateDirectoryW", &WatchDirectory);
    hooks.Add("KERNEL32.dll", "CreateFileW", &WatchFile);
    hooks.Add("KERNEL32.dll", "SetFilePointer", &WatchPosition);
    LoadedLibrary library;
    for (const std::string& missing : hooks.Missing()) {
        std::printf("not imported: %s\n", missing.c_str());
    }
    {
        // The runtime's own WriteFile is not in the import table of a DLL that never writes.
        void** const write = FindImportSlot(library.Module(), "KERNEL32.dll", "WriteFile");
        if (write != nullptr) {
            ReplaceImportSlot(write, reinterpret_cast<void*>(&WatchWrite));
        }
        std::printf("record %d\n", static_cast<int>(library.FetchLastError().code));
        int size = 0;
        const QLerr version = library.QLLIB_GetSDKVersion(nullptr, &size);
        std::printf("version %d %d\n", static_cast<int>(version), size);
        std::printf("failure %d\n", static_cast<int>(library.QLGPS_Initialize(0)));
        PrintSharing("loaded");
    }
    library.Unload();
    PrintSharing("unloaded");
    return 0;
}

// Every such child works, whatever became of the log.
const std::string kWorks = "record 0\nversion 0 11\nfailure 1\n";

class LogFile : public ::testing::Test {
  protected:
    // What a child that loads the library reports; it always ends well.
    static std::string Load(const wchar_t* lookup = L"watch") {
        const ChildResult child = RunChild("load_and_watch_log", {}, {lookup});
        EXPECT_EQ(child.exitCode, 0U) << child.err;
        EXPECT_EQ(child.err, "");
        return child.out;
    }

    std::string Opened(const std::string& path) const {
        return "file " + path + " access 40000000 share 1 disposition 4 attributes 80\n";
    }
    std::string Opened() const { return Opened(ToUtf8(folders_.Log())); }
    std::string DirectoryMade() const { return "directory " + ToUtf8(folders_.Folder()) + "\n"; }

    static std::string Sharing(DWORD loadedRead, DWORD loadedWrite, DWORD unloadedRead, DWORD unloadedWrite) {
        std::array<char, 128> text{};
        std::snprintf(text.data(), text.size(), "loaded: read %lu write %lu\nunloaded: read %lu write %lu\n",
                      loadedRead, loadedWrite, unloadedRead, unloadedWrite);
        return text.data();
    }
    // Readable by others and not writable while the library is loaded; free afterwards.
    static std::string HeldWhileLoaded() {
        return Sharing(ERROR_SUCCESS, ERROR_SHARING_VIOLATION, ERROR_SUCCESS, ERROR_SUCCESS);
    }
    static std::string NoLog(DWORD error) { return Sharing(error, error, error, error); }

    void WriteLog(const std::string& content) const {
        const UniqueHandle file(CreateFileW(folders_.Log().c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                            FILE_ATTRIBUTE_NORMAL, nullptr));
        DWORD written = 0;
        ASSERT_TRUE(WriteFile(file.Get(), content.data(), static_cast<DWORD>(content.size()), &written, nullptr) != 0);
    }
    std::string ReadLog() const {
        const UniqueHandle file(CreateFileW(folders_.Log().c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                            FILE_ATTRIBUTE_NORMAL, nullptr));
        std::string content(1 << 20, '\0');
        DWORD read = 0;
        EXPECT_TRUE(ReadFile(file.Get(), content.data(), static_cast<DWORD>(content.size()), &read, nullptr) != 0);
        content.resize(read);
        return content;
    }

    static constexpr const char* kFolderAsked = "folder 35\n";
    MachineStateLock lock_;
    CommonFolders folders_;
    RegistryValueGuard setting_{HKEY_LOCAL_MACHINE, L"Software\\Norvane\\QLSDK", L"EnableLog"};
};

struct Setting {
    const char* name;
    std::function<void(RegistryValueGuard&)> make;
};

void PrintTo(const Setting& setting, std::ostream* stream) {
    *stream << setting.name;
}

void SetBytes(RegistryValueGuard& value, DWORD type, const std::string& bytes) {
    value.Set(type, std::as_bytes(std::span(bytes)));
}

using namespace std::string_literals;
const Setting kOff[] = {
    {"NoKey", [](RegistryValueGuard& value) { value.RemoveKey(); }},
    {"NoValue",
     [](RegistryValueGuard& value) {
         value.SetDword(1);
         value.Remove();
     }},
    {"Zero", [](RegistryValueGuard& value) { value.SetDword(0); }},
    {"Text", [](RegistryValueGuard& value) { value.SetText(L"1"); }},
    {"ExpandableText", [](RegistryValueGuard& value) { value.SetText(L"1", REG_EXPAND_SZ); }},
    {"Binary", [](RegistryValueGuard& value) { SetBytes(value, REG_BINARY, "\1\0\0\0"s); }},
    {"SixtyFourBits", [](RegistryValueGuard& value) { SetBytes(value, REG_QWORD, "\1\0\0\0\0\0\0\0"s); }},
    {"BigEndian", [](RegistryValueGuard& value) { SetBytes(value, REG_DWORD_BIG_ENDIAN, "\0\0\0\1"s); }},
    {"NoType", [](RegistryValueGuard& value) { SetBytes(value, REG_NONE, "\1\0\0\0"s); }},
    {"ShortNumber", [](RegistryValueGuard& value) { SetBytes(value, REG_DWORD, "\1\0\0"s); }},
    {"LongNumber", [](RegistryValueGuard& value) { SetBytes(value, REG_DWORD, "\1\0\0\0\0"s); }},
    {"NumberLongerThanTheBuffer",
     [](RegistryValueGuard& value) { SetBytes(value, REG_DWORD, std::string(300, '\1')); }},
    {"TextLongerThanTheBuffer", [](RegistryValueGuard& value) { value.SetText(std::wstring(300, L'1')); }},
};

class LogFileOff : public LogFile, public ::testing::WithParamInterface<Setting> {};

TEST_P(LogFileOff, MakesNothingAndLooksForNothing) {
    GetParam().make(setting_);
    folders_.MakeParent();
    EXPECT_EQ(Load(), kWorks + NoLog(ERROR_PATH_NOT_FOUND));
    EXPECT_FALSE(Exists(folders_.Folder()));
}

INSTANTIATE_TEST_SUITE_P(Settings, LogFileOff, ::testing::ValuesIn(kOff),
                         [](const auto& test) { return std::string(test.param.name); });

class LogFileOn : public LogFile, public ::testing::WithParamInterface<DWORD> {};

TEST_P(LogFileOn, IsMadeAndHeldWhileTheLibraryIsLoaded) {
    setting_.SetDword(GetParam());
    folders_.MakeFolder();
    EXPECT_EQ(Load(), kFolderAsked + Opened() + "position 0 from 2 is 0\n" + kWorks + HeldWhileLoaded());
    EXPECT_EQ(ReadLog(), "");
}

INSTANTIATE_TEST_SUITE_P(AnyNumberButZero, LogFileOn, ::testing::Values(1U, 2U, 256U, 0x80000000U, 0xFFFFFFFFU),
                         [](const auto& test) { return std::to_string(test.param); });

TEST_F(LogFile, FolderIsMadeWhenItsParentIsThere) {
    setting_.SetDword(1);
    folders_.MakeParent();
    EXPECT_EQ(Load(),
              kFolderAsked + DirectoryMade() + Opened() + "position 0 from 2 is 0\n" + kWorks + HeldWhileLoaded());
    EXPECT_TRUE(IsFolder(folders_.Folder()));
    EXPECT_EQ(ReadLog(), "");
}

TEST_F(LogFile, MissingParentIsNotMadeAndTheLibraryLoads) {
    setting_.SetDword(1);
    EXPECT_EQ(Load(), kFolderAsked + DirectoryMade() + Opened() + kWorks + NoLog(ERROR_PATH_NOT_FOUND));
    EXPECT_FALSE(Exists(folders_.Parent()));
}

TEST_F(LogFile, OlderLogIsKeptAsItIs) {
    setting_.SetDword(1);
    folders_.MakeFolder();
    std::string older;
    for (int line = 0; line < 1000; ++line) {
        older += "line " + std::to_string(line) + "\r\n";
    }
    WriteLog(older);
    EXPECT_EQ(Load(), kFolderAsked + Opened() + "position 0 from 2 is " + std::to_string(older.size()) + "\n" + kWorks +
                          HeldWhileLoaded());
    EXPECT_EQ(ReadLog(), older);
}

TEST_F(LogFile, ThatIsAFolderIsNoLogAndTheLibraryLoads) {
    setting_.SetDword(1);
    folders_.MakeFolder();
    CreateDirectoryW(folders_.Log().c_str(), nullptr);
    const std::string report = Load();
    EXPECT_EQ(report, kFolderAsked + Opened() + kWorks + NoLog(ERROR_ACCESS_DENIED));
    EXPECT_TRUE(IsFolder(folders_.Log()));
}

TEST_F(LogFile, ThatAnotherProgramHoldsIsNoLogAndTheLibraryLoads) {
    setting_.SetDword(1);
    folders_.MakeFolder();
    WriteLog("held");
    {
        const UniqueHandle holder(CreateFileW(folders_.Log().c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                              FILE_ATTRIBUTE_NORMAL, nullptr));
        ASSERT_TRUE(holder.Valid());
        EXPECT_EQ(Load(), kFolderAsked + Opened() + kWorks + NoLog(ERROR_SHARING_VIOLATION));
    }
    EXPECT_EQ(ReadLog(), "held");
}

TEST_F(LogFile, FolderThatIsAFileIsNoFolderAndTheLibraryLoads) {
    setting_.SetDword(1);
    folders_.MakeParent();
    UniqueHandle(CreateFileW(folders_.Folder().c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                             nullptr));
    const std::string report = Load();
    EXPECT_EQ(report, kFolderAsked + DirectoryMade() + Opened() + kWorks + NoLog(ERROR_PATH_NOT_FOUND));
}

// With no folder the file is still tried, with an empty path.
TEST_F(LogFile, UnknownCommonFolderIsNoLogAndTheLibraryLoads) {
    setting_.SetDword(1);
    folders_.MakeFolder();
    EXPECT_EQ(Load(L"fail"), Opened("") + kWorks + NoLog(ERROR_FILE_NOT_FOUND));
}

// A path that does not fit is not cut to another one.
TEST_F(LogFile, LongCommonFolderIsNoLogAndTheLibraryLoads) {
    setting_.SetDword(1);
    folders_.MakeFolder();
    EXPECT_EQ(Load(L"long"), Opened("") + kWorks + NoLog(ERROR_FILE_NOT_FOUND));
}

// The setting is read at each load, and at no other time.
TEST_F(LogFile, SettingTakesEffectAtTheNextLoad) {
    folders_.MakeFolder();
    LoadedLibrary library;
    setting_.SetDword(1);
    int size = 0;
    EXPECT_EQ(library.QLLIB_GetSDKVersion(nullptr, &size), QLERR_OK);
    EXPECT_FALSE(Exists(folders_.Log()));
    library.Unload();
    {
        LoadedLibrary again;
        EXPECT_TRUE(Exists(folders_.Log()));
    }
    ASSERT_TRUE(DeleteFileW(folders_.Log().c_str()) != 0);
    setting_.SetDword(0);
    LoadedLibrary last;
    EXPECT_FALSE(Exists(folders_.Log()));
}

TEST_F(LogFile, ThousandLoadsLeaveNothing) {
    setting_.SetDword(1);
    folders_.MakeFolder();
    KeepImportsLoaded();
    ExpectNothingLeft(1000, [] { LoadedLibrary(); });
    EXPECT_EQ(ReadLog(), "");
}

// A second program finds the log held for writing, and loads all the same.
TEST_F(LogFile, OfTwoProgramsBelongsToTheFirst) {
    setting_.SetDword(1);
    folders_.MakeFolder();
    LoadedLibrary library;
    EXPECT_EQ(Load(), kFolderAsked + Opened() + kWorks +
                          Sharing(ERROR_SUCCESS, ERROR_SHARING_VIOLATION, ERROR_SUCCESS, ERROR_SHARING_VIOLATION));
}

}  // namespace
}  // namespace quarlin::test

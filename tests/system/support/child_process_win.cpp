// SPDX-License-Identifier: Apache-2.0
#include "support/child_process_win.h"

#include <array>
#include <cstdio>
#include <stdexcept>
#include <string_view>
#include <thread>

#include "support/owners_win.h"
#include "support/system_text_win.h"

namespace quarlin::test {
namespace {

constexpr std::string_view kModeOption = "--child=";

std::map<std::string, ChildFunction, std::less<>>& Modes() {
    static std::map<std::string, ChildFunction, std::less<>> modes;
    return modes;
}

struct CaseInsensitive {
    bool operator()(const std::wstring& a, const std::wstring& b) const { return _wcsicmp(a.c_str(), b.c_str()) < 0; }
};

// The environment as CreateProcessW wants it: sorted "name=value" texts, each terminated, and a terminator more.
std::wstring EnvironmentBlock(const EnvironmentChanges& changes) {
    std::map<std::wstring, std::wstring, CaseInsensitive> variables;
    wchar_t* const inherited = GetEnvironmentStringsW();
    for (const wchar_t* entry = inherited; *entry != L'\0'; entry += std::wstring_view(entry).size() + 1) {
        const std::wstring_view text(entry);
        const size_t equals = text.find(L'=', 1);
        if (equals != std::wstring_view::npos) {
            variables[std::wstring(text.substr(0, equals))] = text.substr(equals + 1);
        }
    }
    FreeEnvironmentStringsW(inherited);
    for (const auto& [name, value] : changes) {
        if (value) {
            variables[name] = *value;
        } else {
            variables.erase(name);
        }
    }
    std::wstring block;
    for (const auto& [name, value] : variables) {
        block += name + L'=' + value + L'\0';
    }
    return block + L'\0';
}

// Arguments in the form that the runtime's command line parser takes apart again.
std::wstring Quoted(const std::wstring& argument) {
    std::wstring quoted = L"\"";
    size_t backslashes = 0;
    for (const wchar_t character : argument) {
        if (character == L'\\') {
            ++backslashes;
            continue;
        }
        quoted.append(character == L'"' ? backslashes * 2 + 1 : backslashes, L'\\');
        backslashes = 0;
        quoted += character;
    }
    quoted.append(backslashes * 2, L'\\');
    return quoted + L'"';
}

struct Pipe {
    UniqueHandle read;
    UniqueHandle write;
};

Pipe MakePipe() {
    SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    HANDLE read = nullptr;
    HANDLE write = nullptr;
    if (!CreatePipe(&read, &write, &inheritable, 0)) {
        throw std::runtime_error("CreatePipe failed");
    }
    SetHandleInformation(read, HANDLE_FLAG_INHERIT, 0);
    return {UniqueHandle(read), UniqueHandle(write)};
}

std::string ReadToEnd(HANDLE pipe) {
    std::string text;
    std::array<char, 4096> buffer;
    DWORD count = 0;
    while (ReadFile(pipe, buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr) && count != 0) {
        text.append(buffer.data(), count);
    }
    std::erase(text, '\r');
    return text;
}

std::wstring ThisProgram() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

}  // namespace

ChildResult RunThisProgram(const std::vector<std::wstring>& arguments, const EnvironmentChanges& environment,
                           DWORD timeoutMs) {
    Pipe out = MakePipe();
    Pipe err = MakePipe();
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    startup.hStdOutput = out.write.Get();
    startup.hStdError = err.write.Get();

    const std::wstring program = ThisProgram();
    std::wstring commandLine = Quoted(program);
    for (const std::wstring& argument : arguments) {
        commandLine += L' ' + Quoted(argument);
    }
    std::wstring block = EnvironmentBlock(environment);
    PROCESS_INFORMATION created{};
    if (!CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, CREATE_UNICODE_ENVIRONMENT,
                        block.data(), nullptr, &startup, &created)) {
        throw std::runtime_error("CreateProcessW failed, error " + std::to_string(GetLastError()));
    }
    const UniqueHandle process(created.hProcess);
    const UniqueHandle thread(created.hThread);
    // The child has its own; with ours open the pipes would never end.
    out.write.Reset();
    err.write.Reset();

    ChildResult result;
    std::thread outReader([&] { result.out = ReadToEnd(out.read.Get()); });
    std::thread errReader([&] { result.err = ReadToEnd(err.read.Get()); });
    const bool ended = WaitForSingleObject(process.Get(), timeoutMs) == WAIT_OBJECT_0;
    if (!ended) {
        TerminateProcess(process.Get(), ERROR_TIMEOUT);
    }
    outReader.join();
    errReader.join();
    if (!ended) {
        throw std::runtime_error("the child did not end in time; it wrote: " + result.out + result.err);
    }
    GetExitCodeProcess(process.Get(), &result.exitCode);
    return result;
}

ChildResult RunChild(const std::string& mode, const EnvironmentChanges& environment,
                     const std::vector<std::wstring>& arguments, DWORD timeoutMs) {
    std::vector<std::wstring> all{ToWide(std::string(kModeOption) + mode)};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return RunThisProgram(all, environment, timeoutMs);
}

ChildMode::ChildMode(const char* name, ChildFunction function) {
    Modes().emplace(name, function);
}

std::function<int()> RequestedChildMode(int argc, char** argv) {
    if (argc < 2 || !std::string_view(argv[1]).starts_with(kModeOption)) {
        return {};
    }
    const std::string name(std::string_view(argv[1]).substr(kModeOption.size()));
    const auto mode = Modes().find(name);
    if (mode == Modes().end()) {
        return [name] {
            std::fprintf(stderr, "unknown child mode %s\n", name.c_str());
            return 125;
        };
    }
    return [function = mode->second, arguments = std::vector<std::string>(argv + 2, argv + argc)] {
        return function(arguments);
    };
}

}  // namespace quarlin::test

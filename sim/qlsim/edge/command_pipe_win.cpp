// SPDX-License-Identifier: Apache-2.0
#include "edge/command_pipe_win.h"

#include <array>
#include <atomic>
#include <list>
#include <optional>
#include <thread>

#include "edge/handle_win.h"
#include "edge/system_error_win.h"

namespace quarlin::sim {
namespace {

constexpr std::size_t kLongestLine = 64 * 1024;  // bytes; who sends more is no client of ours
constexpr DWORD kLastReply = 1000;               // milliseconds for a reply that is under way when everything ends
constexpr DWORD kLongestReply = 30000;           // milliseconds that a client waits for a reply

std::wstring PipePath(const std::string& name) {
    return L"\\\\.\\pipe\\" + Wide(name);
}

OwnedHandle MakeEvent() {
    OwnedHandle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    if (!event) {
        throw PipeError("an event cannot be made: " + SystemMessage(GetLastError()));
    }
    return event;
}

// One overlapped operation at a time on one end of a pipe, which a stop event can interrupt. The system writes to the
// OVERLAPPED until the operation has ended, so every way out waits for that.
class PipeEnd {
  public:
    PipeEnd(OwnedHandle pipe, HANDLE stop) : pipe_(std::move(pipe)), done_(MakeEvent()), stop_(stop) {}

    // The functions return nothing when the other end is gone or the stop event is set.
    bool Connect() {
        return Run([this](OVERLAPPED* overlapped) { return ConnectNamedPipe(pipe_.get(), overlapped); }).has_value();
    }
    std::optional<std::string> ReadLine() {
        while (true) {
            if (const std::size_t end = received_.find('\n'); end != std::string::npos) {
                std::string line = received_.substr(0, end);
                received_.erase(0, end + 1);
                if (!line.empty() && line.back() == '\r') {
                    line.pop_back();
                }
                return line;
            }
            std::array<char, 4096> buffer;
            const auto count = Run([&](OVERLAPPED* overlapped) {
                return ReadFile(pipe_.get(), buffer.data(), static_cast<DWORD>(buffer.size()), nullptr, overlapped);
            });
            if (!count || *count == 0 || received_.size() > kLongestLine) {
                return std::nullopt;
            }
            received_.append(buffer.data(), *count);
        }
    }
    bool Write(const std::string& text) {
        std::size_t sent = 0;
        while (sent < text.size()) {
            const auto count = Run(
                [&](OVERLAPPED* overlapped) {
                    return WriteFile(pipe_.get(), text.data() + sent, static_cast<DWORD>(text.size() - sent), nullptr,
                                     overlapped);
                },
                kLastReply);
            if (!count) {
                return false;
            }
            sent += *count;
        }
        return true;
    }

  private:
    template <typename Begin>
    std::optional<DWORD> Run(const Begin& begin, DWORD grace = 0) {
        OVERLAPPED overlapped{};
        overlapped.hEvent = done_.get();
        ResetEvent(done_.get());
        if (!begin(&overlapped)) {
            const DWORD error = GetLastError();
            if (error == ERROR_PIPE_CONNECTED) {
                return 0;  // the client was faster, and no completion follows
            }
            if (error != ERROR_IO_PENDING) {
                return std::nullopt;
            }
            const std::array<HANDLE, 2> events{done_.get(), stop_};
            const DWORD count = stop_ == nullptr ? 1 : 2;
            const DWORD patience = stop_ == nullptr ? kLongestReply : INFINITE;
            if (WaitForMultipleObjects(count, events.data(), FALSE, patience) != WAIT_OBJECT_0 &&
                WaitForSingleObject(done_.get(), grace) != WAIT_OBJECT_0) {
                CancelIoEx(pipe_.get(), &overlapped);
            }
        }
        DWORD transferred = 0;
        if (!GetOverlappedResult(pipe_.get(), &overlapped, &transferred, TRUE)) {
            return std::nullopt;
        }
        return transferred;
    }

    OwnedHandle pipe_;
    OwnedHandle done_;
    HANDLE stop_;
    std::string received_;
};

OwnedHandle MakeInstance(const std::string& name) {
    constexpr DWORD kBuffer = 4096;
    OwnedHandle pipe(CreateNamedPipeW(PipePath(name).c_str(), PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED,
                                      PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS,
                                      PIPE_UNLIMITED_INSTANCES, kBuffer, kBuffer, 0, nullptr));
    if (!pipe) {
        throw PipeError("the pipe \"" + name + "\" cannot be made: " + SystemMessage(GetLastError()));
    }
    return pipe;
}

}  // namespace

class CommandPipe::Server {
  public:
    Server(std::string name, Answer answer) : name_(std::move(name)), answer_(std::move(answer)), stop_(MakeEvent()) {
        // Asked like this because not every system minds FILE_FLAG_FIRST_PIPE_INSTANCE.
        if (WaitNamedPipeW(PipePath(name_).c_str(), 1) || GetLastError() != ERROR_FILE_NOT_FOUND) {
            throw PipeError("another program answers on the pipe \"" + name_ + "\" already");
        }
        auto first = std::make_unique<PipeEnd>(MakeInstance(name_), stop_.get());
        acceptor_ = std::thread([this, end = std::move(first)]() mutable { Accept(std::move(end)); });
    }
    ~Server() {
        SetEvent(stop_.get());
        acceptor_.join();
        for (Conversation& conversation : conversations_) {
            conversation.thread.join();
        }
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

  private:
    struct Conversation {
        std::atomic<bool> over = false;
        std::thread thread;
    };

    // The next instance exists before the conversation begins: a client that comes in between finds the pipe busy for a
    // moment, but never absent.
    void Accept(std::unique_ptr<PipeEnd> waiting) {
        while (waiting != nullptr) {
            const bool connected = waiting->Connect();
            if (WaitForSingleObject(stop_.get(), 0) == WAIT_OBJECT_0) {
                return;
            }
            std::unique_ptr<PipeEnd> next;
            try {
                next = std::make_unique<PipeEnd>(MakeInstance(name_), stop_.get());
            } catch (const PipeError&) {
                return;  // the system is out of pipes: the conversations that there are go on
            }
            if (connected) {
                Begin(std::move(waiting));
            }
            waiting = std::move(next);
        }
    }
    void Begin(std::unique_ptr<PipeEnd> end) {
        conversations_.remove_if([](Conversation& conversation) {
            const bool over = conversation.over;
            if (over) {
                conversation.thread.join();
            }
            return over;
        });
        Conversation& conversation = conversations_.emplace_back();
        conversation.thread = std::thread([this, &conversation, talk = std::move(end)] {
            while (const auto line = talk->ReadLine()) {
                if (!talk->Write(answer_(*line) + "\n")) {
                    break;
                }
            }
            conversation.over = true;
        });
    }

    std::string name_;
    Answer answer_;
    OwnedHandle stop_;
    std::list<Conversation> conversations_;  // the acceptor's until it has ended
    std::thread acceptor_;
};

CommandPipe::CommandPipe(const std::string& name, Answer answer)
    : server_(std::make_unique<Server>(name, std::move(answer))) {
}

CommandPipe::~CommandPipe() = default;

std::string AskPipe(const std::string& name, const std::string& line, std::chrono::milliseconds wait) {
    const auto deadline = std::chrono::steady_clock::now() + wait;
    constexpr DWORD kRetry = 20;  // milliseconds
    while (true) {
        OwnedHandle pipe(CreateFileW(PipePath(name).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                     FILE_FLAG_OVERLAPPED, nullptr));
        if (pipe) {
            PipeEnd end(std::move(pipe), nullptr);
            if (end.Write(line + "\n")) {
                if (const auto reply = end.ReadLine()) {
                    return *reply;
                }
            }
            throw PipeError("nobody answers any more on the pipe \"" + name + "\"");
        }
        const DWORD error = GetLastError();
        if (std::chrono::steady_clock::now() >= deadline) {
            throw PipeError("nobody answers on the pipe \"" + name + "\": " + SystemMessage(error));
        }
        // For a pipe that does not exist yet there is nothing to wait on.
        if (error != ERROR_PIPE_BUSY || !WaitNamedPipeW(PipePath(name).c_str(), kRetry)) {
            Sleep(kRetry);
        }
    }
}

}  // namespace quarlin::sim

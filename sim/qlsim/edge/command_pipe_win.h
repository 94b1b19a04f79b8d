// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

namespace quarlin::sim {

class PipeError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Answers commands on \\.\pipe\NAME while it lives: one line in, one line out, any number of clients at the same time.
// The destructor ends all conversations and waits for the threads; a command that is being carried out is finished
// first.
class CommandPipe {
  public:
    // Gets a line without its end and returns the reply without a line end. Called on a thread for each client.
    using Answer = std::function<std::string(const std::string& line)>;

    // Throws PipeError when the pipe cannot be made, also when another program has one of this name.
    CommandPipe(const std::string& name, Answer answer);
    CommandPipe(const CommandPipe&) = delete;
    CommandPipe& operator=(const CommandPipe&) = delete;
    ~CommandPipe();

  private:
    class Server;
    std::unique_ptr<Server> server_;
};

// The other end, for one command: waits for the pipe, sends the line and returns the reply without its line end. Throws
// PipeError when nobody answers.
std::string AskPipe(const std::string& name, const std::string& line, std::chrono::milliseconds wait);

}  // namespace quarlin::sim

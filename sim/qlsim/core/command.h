// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quarlin::sim {

using Words = std::vector<std::string>;

// A command that is refused; what() is the sentence for the one who gave it.
class CommandError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Words are divided by blanks. A word in double quotes may hold blanks, and "" in it stands for one quote; a backslash
// is an ordinary character, because paths are full of them.
Words SplitWords(std::string_view line);
std::string JoinWords(const Words& words);

// Arguments of commands; each throws a CommandError that names the argument.
double ProbabilityArgument(const std::string& word);
bool SwitchArgument(const std::string& word);

// What is said to a client: one line, "ok ..." or "error ...".
struct Reply {
    bool ok = true;
    std::string text;

    std::string Line() const;
};

// "; did you mean ...?" when one of the known names is near the given one, else nothing.
std::string Suggestion(std::string_view given, const std::vector<std::string>& known);

}  // namespace quarlin::sim

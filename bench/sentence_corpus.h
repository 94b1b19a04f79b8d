// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace quarlin::bench {

// Sentences in memory as the line reader hands them over: without line ends, each with a terminator, one behind
// another.
class SentenceCorpus {
  public:
    // Raises std::runtime_error when there is no such file or no line in it.
    static SentenceCorpus FromFile(const std::string& path);
    // Cycles of a GPS and GLONASS receiver with a position that moves, by the same numbers each time.
    static SentenceCorpus Generated();

    const std::vector<const char*>& Sentences() const { return sentences_; }
    const std::string& Bytes() const { return bytes_; }

  private:
    explicit SentenceCorpus(const std::string& text);

    std::string bytes_;
    std::vector<const char*> sentences_;
};

}  // namespace quarlin::bench

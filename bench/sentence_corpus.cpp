// SPDX-License-Identifier: Apache-2.0
#include "sentence_corpus.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

namespace quarlin::bench {
namespace {

// One receiver's cycles, a second each.
class Generator {
  public:
    std::string Cycles(int count) {
        for (int second = 0; second < count; ++second) {
            Cycle(second);
        }
        return text_;
    }

  private:
    template <typename... Values>
    void Put(const char* format, Values... values) {
        std::array<char, 128> field{};
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
        std::snprintf(field.data(), field.size(), format, values...);
#pragma GCC diagnostic pop
        line_ += field.data();
    }

    void End() {
        unsigned sum = 0;
        for (const char c : line_.substr(1)) {
            sum ^= static_cast<unsigned char>(c);
        }
        Put("*%02X", sum);
        text_ += line_ + '\n';
        line_.clear();
    }

    int Random(int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random_);
    }

    void InView(const char* talker, int firstPrn, int count) {
        const int messages = (count + 3) / 4;
        for (int message = 1; message <= messages; ++message) {
            Put("$%sGSV,%d,%d,%02d", talker, messages, message, count);
            for (int i = 4 * (message - 1); i < count && i < 4 * message; ++i) {
                Put(",%02d,%02d,%03d", firstPrn + i, Random(5, 88), Random(0, 359));
                if (Random(0, 4) == 0) {
                    line_ += ',';
                } else {
                    Put(",%02d", Random(12, 48));
                }
            }
            End();
        }
    }

    void Used(int firstPrn, int count) {
        line_ += "$GNGSA,A,3";
        for (int i = 0; i < 12; ++i) {
            if (i < count) {
                Put(",%02d", firstPrn + i);
            } else {
                line_ += ',';
            }
        }
        Put(",1.%02d,0.%02d,1.%02d", Random(10, 99), Random(60, 99), Random(10, 99));
        End();
    }

    void Cycle(int second) {
        const int clock = (second / 3600 % 24) * 10000 + (second / 60 % 60) * 100 + second % 60;
        Put("$GNGGA,%06d.000,5321.%04d,N,00630.%04d,W,1,%02d,1.%02d,%d.%d,M,55.2,M,,", clock, 6802 + second % 3000,
            3372 + second % 5000, Random(6, 12), Random(0, 99), Random(20, 90), Random(0, 9));
        End();
        Used(2, 9);
        Used(65, 6);
        Put("$GNRMC,%06d.000,A,5321.%04d,N,00630.%04d,W,%d.%02d,%d.%02d,211126,,,A", clock, 6802 + second % 3000,
            3372 + second % 5000, Random(0, 60), Random(0, 99), Random(0, 359), Random(0, 99));
        End();
        InView("GP", 2, 11);
        InView("GL", 65, 8);
    }

    std::mt19937 random_{20261121};
    std::string line_;
    std::string text_;
};

}  // namespace

SentenceCorpus::SentenceCorpus(const std::string& text) {
    std::vector<std::size_t> starts;
    bytes_.reserve(text.size() + 1);
    bool atStart = true;
    for (const char c : text) {
        if (c == '\r') {
            continue;
        }
        if (c == '\n') {
            if (!atStart) {
                bytes_.push_back('\0');
            }
            atStart = true;
            continue;
        }
        if (atStart) {
            starts.push_back(bytes_.size());
            atStart = false;
        }
        bytes_.push_back(c);
    }
    for (const std::size_t start : starts) {
        sentences_.push_back(bytes_.data() + start);
    }
    if (sentences_.empty()) {
        throw std::runtime_error("no sentence in the corpus");
    }
}

SentenceCorpus SentenceCorpus::FromFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + path);
    }
    return SentenceCorpus(std::string{std::istreambuf_iterator<char>(file), {}});
}

SentenceCorpus SentenceCorpus::Generated() {
    constexpr int kCycles = 1000;
    return SentenceCorpus(Generator().Cycles(kCycles));
}

}  // namespace quarlin::bench

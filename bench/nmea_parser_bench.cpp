// SPDX-License-Identifier: Apache-2.0
// What a sentence costs: the parser over a corpus in memory, with the lock that the reader takes for each sentence.
//
//   nmea_parser_bench [CORPUS]            prints JSON: the medians of interleaved repetitions
//   nmea_parser_bench --passes N [CORPUS] parses the corpus N times and nothing else, for counting instructions
#include "gps/nmea_parser.h"
#include "measure.h"
#include "sentence_corpus.h"
#include "touch_bytes.h"

#include <charconv>
#include <cstring>
#include <exception>
#include <iostream>
#include <mutex>
#include <optional>
#include <string>

using namespace quarlin;  // NOLINT(google-build-using-namespace)

namespace {

constexpr int kRepetitions = 41;
// A repetition is a few milliseconds long.
constexpr std::size_t kBytesPerRepetition = 8'000'000;

struct LockedFix {
    // Natively what the critical section is on Windows: uncontended, it costs two interlocked operations.
    std::mutex lock;
    gps::FixState fix;

    void Take(const char* sentence) {
        const std::lock_guard held(lock);
        gps::ParseSentence(fix, sentence);
    }
};

// Results that nobody reads would let the compiler leave the work out.
volatile double sink = 0;

void ParseAll(LockedFix& receiver, const bench::SentenceCorpus& corpus, int passes) {
    for (int pass = 0; pass < passes; ++pass) {
        for (const char* const sentence : corpus.Sentences()) {
            receiver.Take(sentence);
        }
    }
    sink = receiver.fix.latitude;
}

void LockAll(LockedFix& receiver, const bench::SentenceCorpus& corpus, int passes) {
    for (int pass = 0; pass < passes; ++pass) {
        for (std::size_t i = 0; i < corpus.Sentences().size(); ++i) {
            const std::lock_guard held(receiver.lock);
        }
    }
}

void TouchAll(const bench::SentenceCorpus& corpus, int passes) {
    std::uint64_t sum = 0;
    for (int pass = 0; pass < passes; ++pass) {
        sum += bench::TouchBytes(corpus.Bytes().data(), corpus.Bytes().size());
    }
    sink = static_cast<double>(sum);
}

void Time(const bench::SentenceCorpus& corpus) {
    LockedFix receiver;
    const int passes = static_cast<int>(kBytesPerRepetition / corpus.Bytes().size()) + 1;
    const double sentences = static_cast<double>(corpus.Sentences().size()) * passes;
    std::vector<double> parse;
    std::vector<double> lock;
    std::vector<double> touch;
    std::vector<double> ratio;
    for (int i = 0; i < kRepetitions; ++i) {
        touch.push_back(bench::SecondsOf([&] { TouchAll(corpus, passes); }));
        parse.push_back(bench::SecondsOf([&] { ParseAll(receiver, corpus, passes); }));
        lock.push_back(bench::SecondsOf([&] { LockAll(receiver, corpus, passes); }));
        // Neighbours in time see the same clock frequency and the same other load.
        ratio.push_back(parse.back() / touch.back());
    }
    constexpr double kNanoseconds = 1e9;
    std::cout << "{\"sentences\": " << corpus.Sentences().size() << ", \"bytes\": " << corpus.Bytes().size()
              << ", \"repetitions\": " << kRepetitions
              << ", \"ns_per_sentence\": " << bench::Median(parse) / sentences * kNanoseconds
              << ", \"lock_ns_per_sentence\": " << bench::Median(lock) / sentences * kNanoseconds
              << ", \"touch_ns_per_sentence\": " << bench::Median(touch) / sentences * kNanoseconds
              << ", \"multiple_of_touch\": " << bench::Median(ratio) << "}\n";
}

std::optional<int> Number(const char* text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text, text + std::strlen(text), number);
    return error == std::errc() && *end == '\0' && number >= 0 ? std::optional(number) : std::nullopt;
}

int Usage() {
    std::cerr << "usage: nmea_parser_bench [--passes N] [CORPUS]\n";
    return 2;
}

}  // namespace

int main(int argc, char** argv) try {
    std::optional<int> passes;
    int argument = 1;
    if (argument < argc && std::strcmp(argv[argument], "--passes") == 0) {
        if (argument + 1 == argc || !(passes = Number(argv[argument + 1]))) {
            return Usage();
        }
        argument += 2;
    }
    if (argc - argument > 1) {
        return Usage();
    }
    const bench::SentenceCorpus corpus =
        argument < argc ? bench::SentenceCorpus::FromFile(argv[argument]) : bench::SentenceCorpus::Generated();
    if (passes) {
        LockedFix receiver;
        ParseAll(receiver, corpus, *passes);
        std::cout << "{\"sentences\": " << corpus.Sentences().size() << "}\n";
    } else {
        Time(corpus);
    }
    return 0;
} catch (const std::exception& failure) {
    std::cerr << "nmea_parser_bench: " << failure.what() << '\n';
    return 1;
}

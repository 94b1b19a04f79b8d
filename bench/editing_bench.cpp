// SPDX-License-Identifier: Apache-2.0
// Editing the text of a scan, beside copying it, for texts of three sizes.
//
//   editing_bench                        prints JSON: the medians of interleaved repetitions
//   editing_bench --passes N CASE SIZE   edits one text N times and nothing else, for counting instructions
#include "bcr/data_editing.h"
#include "measure.h"

#include <quarlin/barcode.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <string>
#include <string_view>

using namespace quarlin;  // NOLINT(google-build-using-namespace)

namespace {

constexpr std::array<std::size_t, 3> kSizes{20, 200, 3'000};
constexpr int kRepetitions = 101;
// Bytes edited in a repetition, whatever the size of the text.
constexpr std::size_t kBytesPerRepetition = 300'000;

constexpr std::string_view kTarget = "--";
// So many in a text, or in so many bytes one.
constexpr std::size_t kFew = 3;
constexpr std::size_t kBytesForEachOfMany = 4;

// Results that nobody reads would let the compiler leave the work out.
volatile std::size_t sink = 0;

// A text of so many bytes with so many targets in it, as far from each other as they get.
std::string TextWith(std::size_t targets, std::size_t size) {
    constexpr std::string_view kBetween = "0123456789ABCDEF";
    std::string text;
    while (text.size() < size) {
        text += kBetween[text.size() % kBetween.size()];
    }
    for (std::size_t i = 0; i < targets; ++i) {
        text.replace(i * (size / targets), kTarget.size(), kTarget);
    }
    return text;
}

std::string TextWithFew(std::size_t size) {
    return TextWith(kFew, size);
}

std::string TextWithMany(std::size_t size) {
    return TextWith(size / kBytesForEachOfMany, size);
}

// Targets around targets: with each that is removed the next one comes into being.
std::string TextNested(std::size_t size) {
    return std::string(size / 2, '(') + std::string(size - size / 2, ')');
}

bcr::EditSetting Replacing(std::size_t) {
    return {QLBCR_EDIT_REPLACE, std::string(kTarget), "-", 0, 0};
}

bcr::EditSetting Inserting(std::size_t size) {
    return {QLBCR_EDIT_INSERT, {}, "SCAN", static_cast<std::int32_t>(size / 2), 0};
}

bcr::EditSetting InsertingFromEnd(std::size_t size) {
    return {QLBCR_EDIT_INSERT, {}, "SCAN", -static_cast<std::int32_t>(size / 2), 0};
}

bcr::EditSetting Deleting(std::size_t) {
    return {QLBCR_EDIT_DELETE, std::string(kTarget), {}, 0, 0};
}

bcr::EditSetting DeletingPairs(std::size_t) {
    return {QLBCR_EDIT_DELETE, "()", {}, 0, 0};
}

struct Case {
    const char* name;
    std::string (*text)(std::size_t size);
    bcr::EditSetting (*setting)(std::size_t size);
};

constexpr std::array kCases{
    Case{"replace-few", TextWithFew, Replacing},      Case{"replace-many", TextWithMany, Replacing},
    Case{"insert", TextWithFew, Inserting},           Case{"insert-from-end", TextWithFew, InsertingFromEnd},
    Case{"delete-few", TextWithFew, Deleting},        Case{"delete-many", TextWithMany, Deleting},
    Case{"delete-nested", TextNested, DeletingPairs},
};

class Scan {
  public:
    Scan(const Case& what, std::size_t size) : text_(what.text(size)), setting_(what.setting(size)) {
        if (bcr::Edit(text_, setting_) == text_) {
            throw std::logic_error(std::string(what.name) + " changes nothing");
        }
    }

    void Copy(std::size_t passes) {
        for (std::size_t pass = 0; pass < passes; ++pass) {
            Touch();
            const std::string copy(text_);
            sink = copy.size();
        }
    }

    void Edit(std::size_t passes) {
        for (std::size_t pass = 0; pass < passes; ++pass) {
            Touch();
            sink = bcr::Edit(std::string(text_), setting_).size();
        }
    }

  private:
    // Makes the compiler believe that the text has changed.
    void Touch() { asm volatile("" : : "r"(text_.data()) : "memory"); }

    std::string text_;
    bcr::EditSetting setting_;
};

void Time(const Case& what, std::size_t size) {
    Scan scan(what, size);
    const std::size_t passes = kBytesPerRepetition / size;
    std::vector<double> copy;
    std::vector<double> edit;
    std::vector<double> ratio;
    for (int i = 0; i < kRepetitions; ++i) {
        copy.push_back(bench::SecondsOf([&] { scan.Copy(passes); }));
        edit.push_back(bench::SecondsOf([&] { scan.Edit(passes); }));
        // Neighbours in time see the same clock frequency and the same other load.
        ratio.push_back(edit.back() / copy.back());
    }
    const double nanosecondsPerPass = 1e9 / static_cast<double>(passes);
    std::cout << '"' << size << "\": {\"ns\": " << bench::Median(edit) * nanosecondsPerPass
              << ", \"copy_ns\": " << bench::Median(copy) * nanosecondsPerPass
              << ", \"multiple_of_copy\": " << bench::Median(ratio) << '}';
}

void TimeAll() {
    std::cout << '{';
    const char* separator = "";
    for (const Case& what : kCases) {
        std::cout << separator << '"' << what.name << "\": {";
        const char* between = "";
        for (const std::size_t size : kSizes) {
            std::cout << between;
            Time(what, size);
            between = ", ";
        }
        std::cout << '}';
        separator = ", ";
    }
    std::cout << "}\n";
}

int Usage() {
    std::cerr << "usage: editing_bench [--passes N CASE SIZE]\n";
    return 2;
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc == 1) {
        TimeAll();
        return 0;
    }
    if (argc != 5 || std::strcmp(argv[1], "--passes") != 0) {
        return Usage();
    }
    for (const Case& what : kCases) {
        if (std::strcmp(what.name, argv[3]) == 0) {
            Scan(what, std::strtoul(argv[4], nullptr, 10)).Edit(std::strtoul(argv[2], nullptr, 10));
            return 0;
        }
    }
    return Usage();
} catch (const std::exception& failure) {
    std::cerr << "editing_bench: " << failure.what() << '\n';
    return 1;
}

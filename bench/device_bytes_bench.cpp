// SPDX-License-Identifier: Apache-2.0
// What the logic makes of a device's bytes, beside copying them once: a swipe report into its record, an RFID reader's
// reply into a tag, and a scanner engine's record into the text for the application.
//
//   device_bytes_bench                             prints JSON: the medians of interleaved repetitions
//   device_bytes_bench --passes N swipe|reply|scan does the one N times and nothing else, for counting instructions
#include "bcr/extended_data.h"
#include "bcr/scan_text.h"
#include "measure.h"
#include "msr/swipe_report.h"
#include "scanner/scan_bytes.h"
#include "uhfrfid/tag_reader.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <numeric>
#include <optional>
#include <string>

using namespace quarlin;  // NOLINT(google-build-using-namespace)

namespace {

constexpr int kRepetitions = 201;
constexpr int kPassesPerRepetition = 5'000;
constexpr std::size_t kReplySize = 64;

// Results that nobody reads would let the compiler leave the work out.
volatile int sink = 0;

// Makes the compiler believe that the bytes have changed and are looked at.
template <typename Bytes>
void Touched(Bytes& bytes) {
    asm volatile("" : : "r"(bytes.data()) : "memory");
}

class SwipeBytes {
  public:
    SwipeBytes() {
        std::iota(report_.begin(), report_.end(), std::uint8_t{0});
        report_[1] = report_[2] = report_[3] = 0;
    }

    void Copy(int passes) {
        for (int pass = 0; pass < passes; ++pass) {
            Touched(report_);
            std::memcpy(copy_.data(), report_.data(), report_.size());
            Touched(copy_);
        }
    }

    void Work(int passes) {
        for (int pass = 0; pass < passes; ++pass) {
            Touched(report_);
            const msr::SwipeRecord record(report_);
            sink = record.Data().isValid;
        }
    }

  private:
    std::array<std::uint8_t, msr::kSwipeReportSize> report_{};
    std::array<std::uint8_t, msr::kSwipeReportSize> copy_{};
};

// A reader that always answers with the same tag.
class OneTag final : public uhfrfid::ReaderTransport {
  public:
    OneTag() {
        constexpr std::array<std::uint8_t, 9> kHead{0x44, kReplySize, 0, 1, 0xC8, 0, 0, 0, 14};
        std::ranges::copy(kHead, reply_.begin());
    }

    bool Send(std::span<std::uint8_t>) override { return true; }
    std::optional<std::size_t> Receive(std::span<std::uint8_t> buffer) override {
        std::ranges::copy(reply_, buffer.begin());
        return reply_.size();
    }
    const std::array<std::uint8_t, kReplySize>& Reply() const { return reply_; }

  private:
    std::array<std::uint8_t, kReplySize> reply_{};
};

class ReplyBytes {
  public:
    void Copy(int passes) {
        for (int pass = 0; pass < passes; ++pass) {
            Touched(reader_.Reply());
            std::memcpy(copy_.data(), reader_.Reply().data(), copy_.size());
            Touched(copy_);
        }
    }

    void Work(int passes) {
        uhfrfid::TagReader tags(reader_, kReplySize);
        std::array<char, kReplySize> identifier{};
        for (int pass = 0; pass < passes; ++pass) {
            Touched(reader_.Reply());
            int length = static_cast<int>(identifier.size());
            int signal = 0;
            tags.FindTag(uhfrfid::TagReader::Inventory::kNext, identifier.data(), &length, &signal);
            sink = length + signal;
        }
    }

  private:
    OneTag reader_;
    std::array<std::uint8_t, kReplySize> copy_{};
};

class ScanBytes {
  public:
    ScanBytes() {
        constexpr std::size_t kTextSize = 200;
        const std::string text(kTextSize, '7');
        sim::IntermecFields fields;
        fields.data = text;
        record_ = sim::IntermecRecord(fields);
        copy_.resize(record_.size());
    }

    void Copy(int passes) {
        for (int pass = 0; pass < passes; ++pass) {
            Touched(record_);
            std::memcpy(copy_.data(), record_.data(), copy_.size());
            Touched(copy_);
        }
    }

    void Work(int passes) {
        const auto* const bytes = reinterpret_cast<const std::uint8_t*>(record_.data());
        for (int pass = 0; pass < passes; ++pass) {
            Touched(record_);
            const std::string text = bcr::IntermecText(bcr::SplitExtendedData({bytes, record_.size()}), settings_);
            sink = static_cast<int>(text.size());
        }
    }

  private:
    const bcr::TextSettings settings_;
    std::string record_;
    std::string copy_;
};

template <typename Bytes>
void Time(const char* name) {
    Bytes bytes;
    std::vector<double> copy;
    std::vector<double> work;
    std::vector<double> ratio;
    for (int i = 0; i < kRepetitions; ++i) {
        copy.push_back(bench::SecondsOf([&] { bytes.Copy(kPassesPerRepetition); }));
        work.push_back(bench::SecondsOf([&] { bytes.Work(kPassesPerRepetition); }));
        // Neighbours in time see the same clock frequency and the same other load.
        ratio.push_back(work.back() / copy.back());
    }
    constexpr double kNanosecondsPerPass = 1e9 / kPassesPerRepetition;
    std::cout << '"' << name << "\": {\"ns\": " << bench::Median(work) * kNanosecondsPerPass
              << ", \"copy_ns\": " << bench::Median(copy) * kNanosecondsPerPass
              << ", \"multiple_of_copy\": " << bench::Median(ratio) << '}';
}

int Usage() {
    std::cerr << "usage: device_bytes_bench [--passes N swipe|reply|scan]\n";
    return 2;
}

int Count(int passes, const std::string& what) {
    if (what == "swipe") {
        SwipeBytes().Work(passes);
    } else if (what == "reply") {
        ReplyBytes().Work(passes);
    } else if (what == "scan") {
        ScanBytes().Work(passes);
    } else {
        return Usage();
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc == 4 && std::strcmp(argv[1], "--passes") == 0) {
        return Count(std::atoi(argv[2]), argv[3]);
    }
    if (argc != 1) {
        return Usage();
    }
    std::cout << '{';
    Time<SwipeBytes>("swipe");
    std::cout << ", ";
    Time<ReplyBytes>("reply");
    std::cout << ", ";
    Time<ScanBytes>("scan");
    std::cout << "}\n";
    return 0;
} catch (const std::exception& failure) {
    std::cerr << "device_bytes_bench: " << failure.what() << '\n';
    return 1;
}

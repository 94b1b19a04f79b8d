// SPDX-License-Identifier: Apache-2.0
// What a getter's call costs, beside what any call into the library and any lock cost. Prints JSON.
//
//   getter_call_bench [PORT]   PORT is the number of a serial port of this machine (3); it is not opened
#include <windows.h>

#include "measure.h"

#include <quarlin/quarlin.h>

#include <array>
#include <cstdlib>
#include <iostream>

using namespace quarlin;  // NOLINT(google-build-using-namespace)

namespace {

constexpr int kRepetitions = 401;
constexpr int kCallsPerRepetition = 20'000;

// Results that nobody reads would let the compiler leave the work out.
volatile double sink = 0;

double CallEmptyExport() {
    return bench::SecondsOf([] {
        for (int i = 0; i < kCallsPerRepetition; ++i) {
            QLMISC_ShowConsole();
        }
    });
}

double EnterAndLeave(CRITICAL_SECTION& section) {
    return bench::SecondsOf([&] {
        for (int i = 0; i < kCallsPerRepetition; ++i) {
            EnterCriticalSection(&section);
            LeaveCriticalSection(&section);
        }
    });
}

double CallGetter() {
    return bench::SecondsOf([] {
        double speed = 0;
        for (int i = 0; i < kCallsPerRepetition; ++i) {
            QLGPS_GetSpeed(&speed);
        }
        sink = speed;
    });
}

int Fail(const char* what) {
    std::array<char, 1024> text{};
    const QLerr code = QLAPI_GetLastError(text.data(), static_cast<int>(text.size()));
    std::cerr << "getter_call_bench: " << what << ": " << code << ' ' << text.data() << '\n';
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    constexpr int kDefaultPort = 3;
    if (QLGPS_Initialize(argc > 1 ? std::atoi(argv[1]) : kDefaultPort) != QLERR_OK) {
        return Fail("QLGPS_Initialize");
    }
    double speed = 0;
    if (QLGPS_GetSpeed(&speed) != QLERR_OK) {
        return Fail("QLGPS_GetSpeed");
    }
    CRITICAL_SECTION section;
    InitializeCriticalSection(&section);
    std::vector<double> empty;
    std::vector<double> lock;
    std::vector<double> getter;
    std::vector<double> ratio;
    for (int i = 0; i < kRepetitions; ++i) {
        empty.push_back(CallEmptyExport());
        lock.push_back(EnterAndLeave(section));
        getter.push_back(CallGetter());
        // Neighbours in time see the same clock frequency and the same other load.
        ratio.push_back(getter.back() / (empty.back() + lock.back()));
    }
    DeleteCriticalSection(&section);
    constexpr double kNanosecondsPerCall = 1e9 / kCallsPerRepetition;
    std::cout << "{\"repetitions\": " << kRepetitions << ", \"calls_per_repetition\": " << kCallsPerRepetition
              << ", \"empty_export_ns\": " << bench::Median(empty) * kNanosecondsPerCall
              << ", \"critical_section_ns\": " << bench::Median(lock) * kNanosecondsPerCall
              << ", \"getter_ns\": " << bench::Median(getter) * kNanosecondsPerCall
              << ", \"multiple_of_call_and_lock\": " << bench::Median(ratio) << "}\n";
    if (QLGPS_Uninitialize() != QLERR_OK) {
        return Fail("QLGPS_Uninitialize");
    }
    return 0;
}

// SPDX-License-Identifier: Apache-2.0
#include "gps/date_time_text.h"

#include <cmath>
#include <limits>

namespace quarlin::gps {
namespace {

// Writes as printf's %d and %02d do, without asking the process's locale. The longest texts, with three numbers of 11
// characters each, fit into 40.
class Writer {
  public:
    explicit Writer(DateTimeText& text) : at_(text.data()) {}

    Writer& Put(char c) {
        *at_++ = c;
        return *this;
    }

    Writer& Number(std::int32_t value) {
        if (value >= 0 && value <= 9) {
            return Put(static_cast<char>('0' + value));
        }
        std::uint32_t magnitude = static_cast<std::uint32_t>(value);
        if (value < 0) {
            Put('-');
            magnitude = 0 - magnitude;
        }
        Digits(magnitude);
        return *this;
    }

    Writer& TwoDigits(std::int32_t value) {
        if (value >= 0 && value <= 99) {
            return Put(static_cast<char>('0' + value / 10)).Put(static_cast<char>('0' + value % 10));
        }
        return Number(value);
    }

    void End() { *at_ = '\0'; }

  private:
    void Digits(std::uint32_t value) {
        if (value >= 10) {
            Digits(value / 10);
        }
        Put(static_cast<char>('0' + value % 10));
    }

    char* at_;
};

using Limits = std::numeric_limits<std::int32_t>;

bool FitsInteger(double value) {
    return value > Limits::min() && value < Limits::max();
}

// Times that no receiver sends: held at the limits, and 0 for what is no number at all.
std::int32_t Held(double value) {
    if (std::isnan(value)) {
        return 0;
    }
    if (FitsInteger(value)) {
        return static_cast<std::int32_t>(value);
    }
    return value < 0 ? Limits::min() : Limits::max();
}

void Write(DateTimeText& text, std::int32_t hours, std::int32_t minutes, std::int32_t seconds) {
    Writer(text).Number(hours).Put(':').TwoDigits(minutes).Put(':').TwoDigits(seconds).End();
}

}  // namespace

void FormatTime(double hhmmss, DateTimeText& text) {
    if (FitsInteger(hhmmss)) {
        // The fraction of a second never decides.
        const auto whole = static_cast<std::int32_t>(hhmmss);
        Write(text, whole / 10000, whole % 10000 / 100, whole % 100);
        return;
    }
    const double hours = std::trunc(hhmmss / 10000);
    const double rest = hhmmss - hours * 10000;
    const double minutes = std::trunc(rest / 100);
    Write(text, Held(hours), Held(minutes), Held(rest - minutes * 100));
}

void FormatDate(std::int32_t ddmmyy, DateTimeText& text) {
    Writer(text)
        .Put(' ')
        .TwoDigits(ddmmyy / 10000)
        .Put('/')
        .TwoDigits(ddmmyy % 10000 / 100)
        .Put('/')
        .Put('2')
        .Put('0')
        .TwoDigits(ddmmyy % 100)
        .End();
}

}  // namespace quarlin::gps

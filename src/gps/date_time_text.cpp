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
        std::uint32_t magnitude = static_cast<std::uint32_t>(value);
        if (value < 0) {
            Put('-');
            magnitude = 0 - magnitude;
        }
        Digits(magnitude);
        return *this;
    }

    Writer& TwoDigits(std::int32_t value) {
        if (value >= 0 && value <= 9) {
            Put('0');
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

std::int32_t Truncated(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (!(value > Limits::min())) {
        // No number at all reads as 0.
        return std::isnan(value) ? 0 : Limits::min();
    }
    return value < Limits::max() ? static_cast<std::int32_t>(value) : Limits::max();
}

}  // namespace

void FormatTime(double hhmmss, DateTimeText& text) {
    const double hours = std::trunc(hhmmss / 10000);
    const double rest = hhmmss - hours * 10000;
    const double minutes = std::trunc(rest / 100);
    const double seconds = rest - minutes * 100;
    Writer(text)
        .Number(Truncated(hours))
        .Put(':')
        .TwoDigits(Truncated(minutes))
        .Put(':')
        .TwoDigits(Truncated(seconds))
        .End();
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

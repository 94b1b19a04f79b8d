// SPDX-License-Identifier: Apache-2.0
#include "view/gps_screen.h"

#include "view/gps_text.h"
#include "view/terminal.h"
#include "view/text.h"

#include <algorithm>
#include <array>

namespace quarlin::qlctl {
namespace {

constexpr size_t kColumnWidth = 38;
constexpr std::string_view kColumnGap = "   ";
constexpr int kBarCells = 16;
// A receiver with a clear sky reports up to about 50 dB-Hz.
constexpr int kFullBarSnr = 50;
// Shorter than a receiver's pause between two bursts is no news.
constexpr std::chrono::seconds kQuietWorthTelling{3};

std::string Cut(std::string line) {
    line.resize(std::min(line.size(), kScreenColumns));
    return line;
}

std::string Line(std::string_view label, std::string_view value) {
    std::string line = Row(label, value);
    line.pop_back();
    return Cut(std::move(line));
}

std::string Bar(int snr) {
    static constexpr std::array<const char*, 8> kEighths{"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
    const int eighths = std::clamp(snr, 0, kFullBarSnr) * kBarCells * 8 / kFullBarSnr;
    std::string bar;
    for (int cell = 0; cell < eighths / 8; ++cell) {
        bar += "█";
    }
    bar += kEighths[static_cast<size_t>(eighths % 8)];
    bar.append(static_cast<size_t>(kBarCells - (eighths + 7) / 8), ' ');
    return bar;
}

// A number as wide as the column, whatever the receiver sent.
std::string Number(int value, size_t width) {
    std::string text = std::to_string(value);
    return text.size() > width ? std::string(width, '#') : PadLeft(text, width);
}

std::string SatelliteCell(const GpsGlonassSatellite& satellite, bool colour) {
    const bool used = satellite.used != 0;
    const auto paint = [colour, used](const std::string& text) {
        return colour ? (used ? terminal::kGreen : terminal::kDim) + text + terminal::kPlain : text;
    };
    // 4 + 3 + 16 + 4 + 5 + 6 = kColumnWidth
    return Number(satellite.PRN, 4) + (used ? " ● " : "   ") + paint(Bar(satellite.SNR)) + Number(satellite.SNR, 4) +
           Number(satellite.Elevation, 4) + "°" + Number(satellite.Azimuth, 5) + "°";
}

using Column = std::vector<std::string>;

Column ColumnHead(const char* title) {
    return {PadRight(title, kColumnWidth), " PRN   0     dB-Hz   50 SNR elev  azim"};
}

// Keeps a column within the rows; what does not fit becomes a last line that counts it.
void Clip(Column& column, size_t rows) {
    if (column.size() <= rows) {
        return;
    }
    const size_t hidden = column.size() - rows + 1;
    column.resize(rows - 1);
    column.push_back(PadRight("     ... and " + std::to_string(hidden) + " more", kColumnWidth));
}

void AppendSideBySide(std::vector<std::string>& screen, const Column& left, const Column& right) {
    for (size_t row = 0; row < std::max(left.size(), right.size()); ++row) {
        std::string line = row < left.size() ? left[row] : std::string(kColumnWidth, ' ');
        if (row < right.size()) {
            line.append(kColumnGap).append(right[row]);
        }
        screen.push_back(std::move(line));
    }
}

}  // namespace

std::vector<std::string> ReadingScreen(const GpsReading& reading, std::string_view portName,
                                       std::chrono::seconds unchangedFor, const ScreenStyle& style) {
    std::string receiver = std::string("sending on ").append(portName);
    if (unchangedFor >= kQuietWorthTelling) {
        receiver = std::string(portName) + ", no change for " + std::to_string(unchangedFor.count()) + " s";
    }
    std::vector<std::string> screen{
        Line("Receiver", receiver),
        Line("Time", TimeText(reading)),
        Line("Fix", FixText(reading)),
        Line("Position", PositionText(reading)),
        Line("Speed", SpeedText(reading)),
        Line("Course", CourseText(reading)),
        Line("Dilution", DilutionText(reading)),
        Line("Satellites", SatelliteCountText(reading)),
        "",
    };

    Column gps = ColumnHead("GPS");
    Column glonass = ColumnHead("GLONASS");
    const size_t head = gps.size();
    for (const GpsGlonassSatellite& satellite : reading.satellites) {
        Column& column = SystemOf(satellite) == SatelliteSystem::kGlonass ? glonass : gps;
        column.push_back(SatelliteCell(satellite, style.colour));
    }
    // The last row stays free: the cursor rests there.
    const size_t rows = static_cast<size_t>(std::max(style.rows - 1, 0));
    const size_t satelliteRows = std::max(rows, screen.size() + head + 1) - screen.size();
    Clip(gps, satelliteRows);
    Clip(glonass, satelliteRows);
    AppendSideBySide(screen, gps, glonass);
    return screen;
}

std::vector<std::string> WaitingScreen(std::string_view portName, std::chrono::seconds waitedFor) {
    return {Line("Receiver", "waiting for the first line on " + std::string(portName) + ", " +
                                 std::to_string(waitedFor.count()) + " s")};
}

}  // namespace quarlin::qlctl

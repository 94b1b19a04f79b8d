// SPDX-License-Identifier: Apache-2.0
#include "bcr/scanner_probe.h"

#include "bcr/scanner_names.h"

#include <optional>
#include <string>
#include <utility>

namespace quarlin::bcr {
namespace {

constexpr int kRounds = 15;
constexpr std::uint32_t kBetweenRounds = 150;

constexpr std::uint32_t kMostHidPaths = 100;
// What fits into the engine's name of a device.
constexpr std::size_t kNameRoom = 1024;

struct Finding {
    BarcodeEngineKind kind;
    EngineAddress address;
};

// Engine libraries take narrow texts, and a path is made of plain characters.
std::string Narrow(const std::wstring& path) {
    std::string text;
    for (const wchar_t c : path.substr(0, kNameRoom - 1)) {
        text.push_back(c < 0x80 ? static_cast<char>(c) : '?');
    }
    return text;
}

std::optional<Finding> FindIntermec(AttachedDevices& attached) {
    for (const std::wstring& path : attached.HidPaths(kMostHidPaths)) {
        if (const BarcodeEngineKind kind = EngineOfHidPath(path); kind != BarcodeEngineKind::kNone) {
            return Finding{kind, {Narrow(path), 0, std::nullopt}};
        }
    }
    for (const std::wstring& name : attached.PortNames()) {
        if (const std::optional<std::int32_t> port = ScannerPortNumber(name)) {
            return Finding{BarcodeEngineKind::kIntermecSerial, {{}, 0, port}};
        }
    }
    return std::nullopt;
}

std::optional<Finding> Look(BarcodeEngineKind kind, AttachedDevices& attached, HoneywellEngine& honeywell) {
    std::optional<Finding> finding;
    if (kind != BarcodeEngineKind::kHoneywell) {
        finding = FindIntermec(attached);
    }
    if (!finding && (kind == BarcodeEngineKind::kNone || kind == BarcodeEngineKind::kHoneywell)) {
        if (std::optional<EngineAddress> device = honeywell.FindDevice()) {
            finding = Finding{BarcodeEngineKind::kHoneywell, *std::move(device)};
        }
    }
    return finding;
}

// Ends what a search has started, however it ends.
class StartedForSearch {
  public:
    explicit StartedForSearch(HoneywellEngine& honeywell) : honeywell_(honeywell) {}
    StartedForSearch(const StartedForSearch&) = delete;
    StartedForSearch& operator=(const StartedForSearch&) = delete;
    ~StartedForSearch() { honeywell_.ShutDown(); }

  private:
    HoneywellEngine& honeywell_;
};

}  // namespace

bool FindScanner(BarcodeEngineKind& kind, EngineAddress& address, AttachedDevices& attached, HoneywellEngine& honeywell,
                 EngineSystem& system) {
    if (kind == BarcodeEngineKind::kIntermecBuiltIn) {
        return true;
    }
    const StartedForSearch started(honeywell);
    std::optional<Finding> finding;
    for (int round = 1; !(finding = Look(kind, attached, honeywell)) && round < kRounds; ++round) {
        system.Pause(kBetweenRounds);
    }
    if (!finding) {
        return false;
    }
    kind = finding->kind;
    address = std::move(finding->address);
    return true;
}

}  // namespace quarlin::bcr

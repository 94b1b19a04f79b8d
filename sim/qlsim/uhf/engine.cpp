// SPDX-License-Identifier: Apache-2.0
#include "uhf/engine.h"

#include <algorithm>
#include <array>

namespace quarlin::sim {
namespace {

constexpr std::size_t kStatusAt = 2;
constexpr std::size_t kMostWordsRead = 30;      // what is left of the reply after its first four bytes
constexpr std::size_t kIdentifierAt = 9;        // in an inventory reply
constexpr std::size_t kLongestIdentifier = 54;  // whole words that its rest has room for
constexpr std::array<std::uint8_t, 6> kLinkFrequencies = {0, 6, 8, 9, 12, 15};

std::uint32_t PasswordAt(std::span<const std::uint8_t> command, std::size_t at) {
    std::uint32_t password = 0;
    for (const std::uint8_t byte : command.subspan(at, 4)) {
        password = password << 8 | byte;
    }
    return password;
}

bool LengthIsRight(const UhfCommandShape& shape, std::span<const std::uint8_t> report) {
    if (report.size() < 2 || report[1] > report.size()) {
        return false;
    }
    if (shape.fixedLength != 0) {
        return report[1] == shape.fixedLength;
    }
    return report[1] >= shape.lengthBefore &&
           report[1] == shape.lengthBefore + shape.bytesInCount * report[shape.countAt];
}

bool IsLinkFrequency(std::uint8_t code) {
    return std::find(kLinkFrequencies.begin(), kLinkFrequencies.end(), code) != kLinkFrequencies.end();
}

}  // namespace

std::optional<Bytes> UhfEngine::Execute(Frame report) {
    const UhfCommandShape* const shape = report.empty() ? nullptr : FindUhfCommand(report[0]);
    if (shape == nullptr) {
        return std::nullopt;
    }
    Bytes reply(shape->replyLength);
    UhfStatus status = UhfStatus::kInvalidParameter;
    if (LengthIsRight(*shape, report)) {
        status = Run(shape->code, report.first(report[1]), reply);
    }
    reply[0] = ReplyCode(shape->code);
    reply[1] = shape->replyLength;
    reply[kStatusAt] = static_cast<std::uint8_t>(status);
    return reply;
}

void UhfEngine::Restart() {
    radio_ = start_;
    round_.clear();
    selected_.reset();
}

void UhfEngine::Add(const TagSettings& settings) {
    field_.push_back({nextNumber_++, Tag(settings), settings.signal, settings.power, settings.writePower});
}

bool UhfEngine::Remove(const Bytes& epc) {
    const auto found = std::find_if(field_.begin(), field_.end(), [&](const Present& p) { return p.tag.Epc() == epc; });
    if (found == field_.end()) {
        return false;
    }
    field_.erase(found);
    return true;
}

bool UhfEngine::SetSignal(const Bytes& epc, std::int8_t signal) {
    Present* const present = Find(epc);
    if (present != nullptr) {
        present->signal = signal;
    }
    return present != nullptr;
}

const UhfEngine::Present* UhfEngine::Selected() const {
    const auto found =
        std::find_if(field_.begin(), field_.end(), [this](const Present& p) { return selected_ == p.number; });
    return found == field_.end() ? nullptr : &*found;
}

UhfStatus UhfEngine::Run(UhfCode code, Frame command, Bytes& reply) {
    switch (code) {
        case UhfCode::kSelect:
            return Select(command);
        case UhfCode::kRead:
            return Read(command, reply);
        case UhfCode::kWrite:
            return Write(command, reply);
        case UhfCode::kLock:
            return Lock(command);
        case UhfCode::kKill:
            return Kill(command);
        case UhfCode::kInventory:
            return Inventory(command, reply);
        case UhfCode::kQuery:
            return ChangeQuery(command, reply);
        case UhfCode::kSetPower:
            if (command[2] > radio_.mostPower) {
                return UhfStatus::kInvalidParameter;
            }
            radio_.power = command[2];
            return UhfStatus::kSuccess;
        case UhfCode::kGetPower:
            reply[3] = radio_.power;
            return UhfStatus::kSuccess;
    }
    return UhfStatus::kNotAllowed;
}

// The data is compared with the beginning of each EPC; no data ends the selection.
UhfStatus UhfEngine::Select(Frame command) {
    const Frame mask = command.subspan(3);
    if (mask.empty()) {
        selected_.reset();
        return UhfStatus::kSuccess;
    }
    const Present* best = nullptr;
    for (const Present& present : field_) {
        const Bytes epc = present.tag.Epc();
        if (IsHeard(present) && mask.size() <= epc.size() && std::equal(mask.begin(), mask.end(), epc.begin()) &&
            (best == nullptr || present.signal > best->signal)) {
            best = &present;
        }
    }
    if (best == nullptr) {
        return UhfStatus::kSelect;  // what was selected before stays so
    }
    selected_ = best->number;
    return UhfStatus::kSuccess;
}

UhfStatus UhfEngine::Read(Frame command, Bytes& reply) {
    const std::size_t words = command[8];
    if (command[2] > static_cast<std::uint8_t>(TagBank::kUser) || words > kMostWordsRead) {
        return UhfStatus::kInvalidParameter;
    }
    const Present* const target = Target();
    if (target == nullptr) {
        return UhfStatus::kNoReply;
    }
    const auto access = target->tag.Enter(PasswordAt(command, 4));
    if (!access) {
        return UhfStatus::kAccess;
    }
    Bytes data;
    const UhfStatus status =
        target->tag.Read(*access, static_cast<TagBank>(command[2]), command[3], words, kMostWordsRead, data);
    reply[3] = static_cast<std::uint8_t>(data.size() / 2);
    std::copy(data.begin(), data.end(), reply.begin() + 4);
    return status;
}

UhfStatus UhfEngine::Write(Frame command, Bytes& reply) {
    if (command[2] > static_cast<std::uint8_t>(TagBank::kUser) || command[8] == 0) {
        return UhfStatus::kInvalidParameter;
    }
    const Opened opened = Open(PasswordAt(command, 4));
    UhfStatus status = opened.status;
    if (opened.tag != nullptr) {
        status = opened.tag->Write(opened.access, static_cast<TagBank>(command[2]), command[3], command.subspan(9));
    }
    reply[3] = status == UhfStatus::kSuccess ? command[8] : 0;
    return status;
}

UhfStatus UhfEngine::Lock(Frame command) {
    if (command[2] > static_cast<std::uint8_t>(LockArea::kUser) ||
        command[3] > static_cast<std::uint8_t>(LockState::kAlwaysLocked)) {
        return UhfStatus::kInvalidParameter;
    }
    const Opened opened = Open(PasswordAt(command, 4));
    return opened.tag == nullptr ? opened.status
                                 : opened.tag->ChangeLock(opened.access, static_cast<LockArea>(command[2]),
                                                          static_cast<LockState>(command[3]));
}

UhfStatus UhfEngine::Kill(Frame command) {
    const Opened opened = Open(0);  // the access password has no part in it
    return opened.tag == nullptr ? opened.status : opened.tag->Kill(PasswordAt(command, 2));
}

UhfStatus UhfEngine::Inventory(Frame command, Bytes& reply) {
    if (command[2] != 1 && command[2] != 2) {
        return UhfStatus::kInvalidParameter;
    }
    if (command[2] == 1) {
        round_.clear();
        for (const Present& present : field_) {
            if (IsHeard(present)) {
                round_.push_back(present.number);
            }
        }
    }
    while (!round_.empty()) {
        const std::size_t left = round_.size();
        const std::uint64_t number = round_.front();
        round_.pop_front();
        const auto found =
            std::find_if(field_.begin(), field_.end(), [number](const Present& p) { return p.number == number; });
        if (found == field_.end() || !IsHeard(*found)) {
            continue;  // it has gone since the round began
        }
        Bytes identifier = found->tag.Identifier();
        identifier.resize(std::min(identifier.size(), kLongestIdentifier));
        reply[3] = static_cast<std::uint8_t>(std::min<std::size_t>(left, 255));
        reply[4] = static_cast<std::uint8_t>(found->signal);
        reply[kIdentifierAt - 1] = static_cast<std::uint8_t>(identifier.size());
        std::copy(identifier.begin(), identifier.end(), reply.begin() + kIdentifierAt);
        return UhfStatus::kSuccess;
    }
    return UhfStatus::kSuccess;
}

// The reply has the same fields as the command, one byte further on.
UhfStatus UhfEngine::ChangeQuery(Frame command, Bytes& reply) {
    UhfQuery query = radio_.query;
    bool possible = true;
    const auto take = [&](std::size_t at, auto& value, const auto& isPossible) {
        if (command[at] == 0) {
            return;  // this one is to stay
        }
        value = static_cast<std::remove_reference_t<decltype(value)>>(command[at + 1]);
        possible = possible && isPossible(value);
    };
    take(2, query.linkFrequency, IsLinkFrequency);
    take(4, query.miller, [](std::uint8_t value) { return value <= 3; });
    take(6, query.session, [](std::uint8_t value) { return value <= 3; });
    take(10, query.qBegin, [](std::uint8_t value) { return value <= 15; });
    take(12, query.sensitivity, [](std::int8_t value) { return value >= -86 && value <= -50; });
    if (possible) {
        radio_.query = query;
    }
    reply[4] = radio_.query.linkFrequency;
    reply[6] = radio_.query.miller;
    reply[8] = radio_.query.session;
    reply[12] = radio_.query.qBegin;
    reply[14] = static_cast<std::uint8_t>(radio_.query.sensitivity);
    return possible ? UhfStatus::kSuccess : UhfStatus::kInvalidParameter;
}

UhfEngine::Present* UhfEngine::Find(const Bytes& epc) {
    const auto found = std::find_if(field_.begin(), field_.end(), [&](const Present& p) { return p.tag.Epc() == epc; });
    return found == field_.end() ? nullptr : &*found;
}

bool UhfEngine::IsHeard(const Present& present) const {
    return !present.tag.IsKilled() && radio_.power >= present.power;
}

UhfEngine::Present* UhfEngine::Target() {
    Present* target = nullptr;
    for (Present& present : field_) {
        const bool meant = !selected_ || *selected_ == present.number;
        if (meant && IsHeard(present) && (target == nullptr || present.signal > target->signal)) {
            target = &present;
        }
    }
    return target;
}

UhfEngine::Opened UhfEngine::Open(std::uint32_t password) {
    Present* const target = Target();
    if (target == nullptr) {
        return {UhfStatus::kNoReply};
    }
    if (radio_.power < target->writePower) {
        return {UhfStatus::kInsufficientPower};
    }
    const auto access = target->tag.Enter(password);
    return access ? Opened{UhfStatus::kSuccess, &target->tag, *access} : Opened{UhfStatus::kAccess};
}

}  // namespace quarlin::sim

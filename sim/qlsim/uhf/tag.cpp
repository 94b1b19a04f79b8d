// SPDX-License-Identifier: Apache-2.0
#include "uhf/tag.h"

#include <algorithm>
#include <stdexcept>

namespace quarlin::sim {
namespace {

constexpr std::size_t kLongestEpc = 31;     // words: the protocol control word has five bits for the length
constexpr std::size_t kCommonEpc = 6;       // words that every tag has room for
constexpr std::size_t kLongestBank = 1024;  // words
constexpr std::size_t kPcAt = 2;            // bytes, in the EPC bank
constexpr std::size_t kEpcAt = 4;           // likewise
constexpr std::size_t kKillPasswordAt = 0;
constexpr std::size_t kAccessPasswordAt = 4;

std::uint16_t WordAt(const Bytes& bytes, std::size_t at) {
    return static_cast<std::uint16_t>(bytes.at(at) << 8 | bytes.at(at + 1));
}

std::size_t EpcWords(std::uint16_t pc) {
    return pc >> 11;
}

void Append(Bytes& bytes, std::uint32_t value, int width) {
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8) {
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
    }
}

bool IsWholeWords(const Bytes& bytes, std::size_t most) {
    return bytes.size() % 2 == 0 && bytes.size() / 2 <= most;
}

}  // namespace

std::optional<std::string> ProblemOf(const TagSettings& settings) {
    if (!IsWholeWords(settings.epc, kLongestEpc)) {
        return "an EPC has whole words of two bytes, at most 31";
    }
    if (!IsWholeWords(settings.tid, kLongestBank) || !IsWholeWords(settings.user, kLongestBank)) {
        return "a tag's memory has whole words of two bytes, at most 1024";
    }
    if (settings.pc && EpcWords(*settings.pc) != settings.epc.size() / 2) {
        return "the protocol control word's first five bits have to be the EPC's length in words";
    }
    return std::nullopt;
}

Tag::Tag(const TagSettings& settings) : locks_(settings.locks) {
    if (const auto problem = ProblemOf(settings)) {
        throw std::invalid_argument(*problem);
    }
    Bytes& reserved = memory_[static_cast<std::size_t>(TagBank::kReserved)];
    Append(reserved, settings.killPassword, 4);
    Append(reserved, settings.accessPassword, 4);
    Bytes& epc = memory_[static_cast<std::size_t>(TagBank::kEpc)];
    const std::size_t words = settings.epc.size() / 2;
    epc.resize(kPcAt);
    Append(epc, settings.pc.value_or(static_cast<std::uint16_t>(words << 11)), 2);
    epc.insert(epc.end(), settings.epc.begin(), settings.epc.end());
    epc.resize(kEpcAt + 2 * std::max(words, kCommonEpc));
    memory_[static_cast<std::size_t>(TagBank::kTid)] = settings.tid;
    memory_[static_cast<std::size_t>(TagBank::kUser)] = settings.user;
    RenewChecksum();
}

Bytes Tag::Epc() const {
    const Bytes identifier = Identifier();
    return {identifier.begin() + 2, identifier.end()};
}

Bytes Tag::Identifier() const {
    const Bytes& bank = Memory(TagBank::kEpc);
    const auto begin = bank.begin() + kPcAt;
    return {begin, begin + 2 + static_cast<std::ptrdiff_t>(2 * EpcWords(WordAt(bank, kPcAt)))};
}

std::optional<Tag::Access> Tag::Enter(std::uint32_t password) const {
    const std::uint32_t own = Password(kAccessPasswordAt);
    if (password == own) {
        return Access::kSecured;
    }
    return password == 0 ? std::optional(Access::kOpen) : std::nullopt;
}

UhfStatus Tag::Read(Access access, TagBank bank, std::size_t pointer, std::size_t words, std::size_t most,
                    Bytes& data) const {
    const Bytes& memory = Memory(bank);
    const std::size_t size = memory.size() / 2;
    if (pointer >= size || words > size - pointer) {
        return UhfStatus::kMemoryOverrun;
    }
    const std::size_t count = words == 0 ? std::min(size - pointer, most) : words;
    if (bank == TagBank::kReserved) {
        for (std::size_t word = pointer; word < pointer + count; ++word) {
            const LockState lock = LockOfWord(bank, word);
            if (lock == LockState::kAlwaysLocked || (lock == LockState::kLocked && access == Access::kOpen)) {
                return UhfStatus::kMemoryLocked;
            }
        }
    }
    const auto begin = memory.begin() + static_cast<std::ptrdiff_t>(2 * pointer);
    data.assign(begin, begin + static_cast<std::ptrdiff_t>(2 * count));
    return UhfStatus::kSuccess;
}

UhfStatus Tag::Write(Access access, TagBank bank, std::size_t pointer, std::span<const std::uint8_t> data) {
    Bytes& memory = memory_.at(static_cast<std::size_t>(bank));
    const std::size_t size = memory.size() / 2;
    const std::size_t count = data.size() / 2;
    if (pointer >= size || count > size - pointer) {
        return UhfStatus::kMemoryOverrun;
    }
    if (bank == TagBank::kTid || (bank == TagBank::kEpc && pointer == 0)) {
        return UhfStatus::kReadOnly;  // what the factory wrote, and the checksum that the tag itself keeps
    }
    for (std::size_t word = pointer; word < pointer + count; ++word) {
        const LockState lock = LockOfWord(bank, word);
        if (lock == LockState::kAlwaysLocked || (lock == LockState::kLocked && access == Access::kOpen)) {
            return UhfStatus::kMemoryLocked;
        }
    }
    Bytes changed = memory;
    std::copy(data.begin(), data.end(), changed.begin() + static_cast<std::ptrdiff_t>(2 * pointer));
    if (bank == TagBank::kEpc && kEpcAt / 2 + EpcWords(WordAt(changed, kPcAt)) > size) {
        return UhfStatus::kMemoryOverrun;  // a length that the tag has no room for
    }
    memory = std::move(changed);
    RenewChecksum();
    return UhfStatus::kSuccess;
}

UhfStatus Tag::ChangeLock(Access access, LockArea area, LockState state) {
    LockState& lock = locks_.at(static_cast<std::size_t>(area));
    if (access == Access::kOpen) {
        return UhfStatus::kLock;  // a tag with a password ignores it
    }
    if ((lock == LockState::kAlwaysLocked || lock == LockState::kAlwaysUnlocked) && lock != state) {
        return UhfStatus::kMemoryLocked;
    }
    lock = state;
    return UhfStatus::kSuccess;
}

UhfStatus Tag::Kill(std::uint32_t password) {
    if (password == 0 || password != Password(kKillPasswordAt)) {
        return UhfStatus::kKill;
    }
    killed_ = true;
    return UhfStatus::kSuccess;
}

std::uint32_t Tag::Password(std::size_t at) const {
    const Bytes& reserved = Memory(TagBank::kReserved);
    return std::uint32_t{WordAt(reserved, at)} << 16 | WordAt(reserved, at + 2);
}

LockState Tag::LockOfWord(TagBank bank, std::size_t word) const {
    switch (bank) {
        case TagBank::kReserved:
            return Lock(word < kAccessPasswordAt / 2 ? LockArea::kKillPassword : LockArea::kAccessPassword);
        case TagBank::kEpc:
            return Lock(LockArea::kEpc);
        case TagBank::kTid:
            return Lock(LockArea::kTid);
        case TagBank::kUser:
            break;
    }
    return Lock(LockArea::kUser);
}

void Tag::RenewChecksum() {
    const std::uint16_t checksum = TagChecksum(Identifier());
    Bytes& bank = memory_[static_cast<std::size_t>(TagBank::kEpc)];
    bank[0] = static_cast<std::uint8_t>(checksum >> 8);
    bank[1] = static_cast<std::uint8_t>(checksum);
}

std::uint16_t TagChecksum(std::span<const std::uint8_t> bytes) {
    std::uint16_t remainder = 0xFFFF;
    for (const std::uint8_t byte : bytes) {
        remainder = static_cast<std::uint16_t>(remainder ^ byte << 8);
        for (int bit = 0; bit < 8; ++bit) {
            remainder =
                static_cast<std::uint16_t>((remainder & 0x8000) != 0 ? remainder << 1 ^ 0x1021 : remainder << 1);
        }
    }
    return static_cast<std::uint16_t>(~remainder);
}

}  // namespace quarlin::sim

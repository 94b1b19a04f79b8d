// SPDX-License-Identifier: Apache-2.0
#include "card/freed_memory_win.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <vector>

namespace quarlin::test {
namespace {

constexpr std::uint8_t kPattern = 0xDD;

struct Block {
    std::uint8_t* begin;
    std::size_t size;
};

// Never destroyed, because a thread of the library may be in the hook while the watch ends.
struct State {
    std::mutex lock;
    std::vector<Block> blocks;
};

State& TheState() {
    static State& state = *new State;
    return state;
}

void KeepBlock(void* block) {
    if (block == nullptr) {
        return;
    }
    const std::size_t size = SystemFunction<std::size_t(void*)>("msvcrt.dll", "_msize")(block);
    std::memset(block, kPattern, size);
    State& state = TheState();
    const std::lock_guard held(state.lock);
    state.blocks.push_back({static_cast<std::uint8_t*>(block), size});
}

}  // namespace

FreedMemory::FreedMemory() : hook_("msvcrt.dll", "free", &KeepBlock) {
}

FreedMemory::~FreedMemory() {
    State& state = TheState();
    const std::lock_guard held(state.lock);
    for (const Block& block : state.blocks) {
        SystemFunction<void(void*)>("msvcrt.dll", "free")(block.begin);
    }
    state.blocks.clear();
}

std::size_t FreedMemory::Blocks() const {
    State& state = TheState();
    const std::lock_guard held(state.lock);
    return state.blocks.size();
}

std::size_t FreedMemory::WrittenBlocks() const {
    State& state = TheState();
    const std::lock_guard held(state.lock);
    return static_cast<std::size_t>(std::count_if(state.blocks.begin(), state.blocks.end(), [](const Block& block) {
        return std::any_of(block.begin, block.begin + block.size, [](std::uint8_t byte) { return byte != kPattern; });
    }));
}

bool FreedMemory::Contains(const void* address) const {
    State& state = TheState();
    const std::lock_guard held(state.lock);
    const auto* const byte = static_cast<const std::uint8_t*>(address);
    return std::any_of(state.blocks.begin(), state.blocks.end(),
                       [&](const Block& block) { return byte >= block.begin && byte < block.begin + block.size; });
}

}  // namespace quarlin::test

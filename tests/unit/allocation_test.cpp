// SPDX-License-Identifier: Apache-2.0
// The way of a sentence, from its first byte to the state, takes nothing from the heap.
#include "allocations.h"
#include "gps/line_assembler.h"
#include "receiver.h"

#include <gtest/gtest.h>
#include <atomic>
#include <cstdlib>
#include <new>

std::atomic<bool> quarlin::test::heapIsExhausted{false};

namespace {

std::atomic<long> allocations{0};

void* Allocate(std::size_t size) {
    ++allocations;
    if (void* const block = std::malloc(size == 0 ? 1 : size)) {
        return block;
    }
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) {
    return Allocate(size);
}
void* operator new[](std::size_t size) {
    return Allocate(size);
}
// Whatever gives blocks out must be ours where whatever takes them back is.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    ++allocations;
    return quarlin::test::heapIsExhausted ? nullptr : std::malloc(size == 0 ? 1 : size);
}
void* operator new[](std::size_t size, const std::nothrow_t& nothrow) noexcept {
    return operator new(size, nothrow);
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete[](void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    std::free(block);
}

long quarlin::test::AllocationsSoFar() {
    return allocations;
}

namespace quarlin::test {
namespace {

TEST(SentencePath, CountsAllocationsAtAll) {
    const long before = allocations;
    const std::string text(1000, 'x');
    EXPECT_GT(allocations, before);
    EXPECT_EQ(text.size(), 1000U);
}

TEST(SentencePath, AllocatesNothing) {
    std::string bytes;
    for (const char* const line :
         {"$GPGGA,092750.000,5321.6802,N,00630.3372,W,1,8,1.03,61.7,M,55.2,M,,*76",
          "$GNGSA,A,3,10,07,05,02,29,04,08,13,300,301,,,1.72,1.03,1.38*0A",
          "$GPRMC,092750.000,A,5321.6802,N,00630.3372,W,0.02,31.66,280511,,,A*43", "$GPVTG,1,T,2,M*00",
          "$GPGSV,3,1,11,10,63,137,17,07,61,098,15,05,59,290,20,08,54,157,30*70", "$GLGSV,1,1,02,65,1,2,3,,,,*00",
          "$GPGGA,-1.00000000000000000000000000000000001,123456789012345678901234567890.123456789,S,.5,W,9,1,1,1*00",
          "~bad", "noise", ""}) {
        bytes += line;
        bytes += "\r\n";
    }
    bytes += "$GPGGA," + std::string(500, '9') + ",5321,N,00630,W,1,1,1,1\n";
    bytes += std::string(3000, 'x') + '\n';

    gps::LineAssembler lines;
    gps::FixState fix;
    const long before = allocations;
    for (const char byte : bytes) {
        if (lines.Take(static_cast<unsigned char>(byte))) {
            gps::ParseSentence(fix, lines.Line());
        }
    }
    const long after = allocations;
    EXPECT_EQ(after, before);
    EXPECT_EQ(fix.publishedTotal, 6);
}

}  // namespace
}  // namespace quarlin::test

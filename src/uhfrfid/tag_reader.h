// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "uhfrfid/exchange.h"
#include "uhfrfid/query_parameter.h"

#include <cstddef>
#include <cstdint>

namespace quarlin::uhfrfid {

// What can be done with an open reader. Each operation checks its arguments, exchanges one command, and writes to the
// caller's variables once all of the reply has been found good.
class TagReader {
  public:
    TagReader(ReaderTransport& transport, std::size_t reportSize) : transport_(transport), reportSize_(reportSize) {}

    enum class Inventory : std::uint8_t {
        kFirst = 1,  // a new round begins
        kNext = 2,
    };
    // length: in the size of tagId, out the bytes written. A tag without identifier leaves both untouched.
    void FindTag(Inventory which, char* tagId, int* length, int* signal);

    void Select(const unsigned char* tagId, unsigned int length);

    void ReadMemory(unsigned int bank, unsigned int wordPointer, const unsigned char* password, int passwordLength,
                    void* data, int wordCount);
    void WriteMemory(unsigned int bank, unsigned int wordPointer, const unsigned char* password, int passwordLength,
                     const unsigned char* data, int wordCount);
    void Lock(unsigned int parameter1, unsigned int parameter2, const unsigned char* password, int passwordLength);
    void Kill(const unsigned char* password, int passwordLength);

    void SetPower(unsigned int power);
    void GetPower(unsigned int* power);

    // Value: int or unsigned int. What the reader has made of a value that was set takes its place.
    template <typename Value>
    void SetQuery(const QueryParameter& parameter, Value* value);
    template <typename Value>
    void GetQuery(const QueryParameter& parameter, Value* value);

  private:
    Reply Exchange(const CommandFrame& command) { return uhfrfid::Exchange(transport_, reportSize_, command); }

    ReaderTransport& transport_;
    std::size_t reportSize_;
};

}  // namespace quarlin::uhfrfid

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "patience.h"
#include "quarlin/uhf_rfid.h"
#include "view/rfid_report.h"

namespace quarlin::qlctl {

// A password in the library's byte order.
using TagPassword = std::vector<std::uint8_t>;

// Parameters to set; those without a value stay as they are.
struct QueryChange {
    std::optional<unsigned> linkFrequencyKhz;
    std::optional<unsigned> miller;
    std::optional<unsigned> session;
    std::optional<unsigned> q;
    std::optional<int> sensitivityDbm;
};

// The UHF RFID reader from opened to closed. Failing calls throw a Failure. A reader that does not answer ends any of
// them with an AbandonedCall, after which no other function is to be called and the reader stays open.
class RfidReader {
  public:
    // The patience outlives the reader.
    explicit RfidReader(const Patience& patience);
    ~RfidReader();
    RfidReader(const RfidReader&) = delete;
    RfidReader& operator=(const RfidReader&) = delete;

    // One round: until the reader has no more tags, or the user wants to stop.
    std::vector<RfidTag> Inventory();
    void Select(std::span<const std::uint8_t> epc);
    // The words that came, which may be fewer than asked for.
    std::vector<std::uint8_t> Read(TagPlace place, int count, const TagPassword& password);
    void Write(TagPlace place, const std::vector<std::uint8_t>& words, const TagPassword& password);
    void Lock(unsigned parameter1, unsigned parameter2, const TagPassword& password);
    void Kill(const TagPassword& password);
    void SetPower(unsigned power);
    unsigned Power();
    void Change(const QueryChange& change);
    QueryParameters Query();

  private:
    using Handle = void*;

    // Nothing when the call succeeded.
    std::optional<LibraryError> Try(std::function<QLerr(Handle)> call);
    void Call(std::function<QLerr(Handle)> call);
    std::optional<RfidTag> Tag(QLerr (*next)(Handle, char*, int*, int*));
    std::vector<std::uint8_t> ReadInto(std::uint8_t fill, TagPlace place, int count, const TagPassword& password);
    template <typename Value>
    Value Get(QLerr (*getter)(Handle, Value*));
    template <typename Value>
    void Set(QLerr (*setter)(Handle, Value*), const std::optional<Value>& value);

    const Patience& patience_;
    Handle handle_ = nullptr;
    bool isAbandoned_ = false;
};

}  // namespace quarlin::qlctl

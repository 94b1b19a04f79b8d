// SPDX-License-Identifier: Apache-2.0
// What a UHF reader may answer. The first byte of the input chooses the question, the second says how much room the
// caller has; the rest is the reply.
#include "core/quarlin_exception.h"
#include "reference/reference_reader_reply.h"
#include "uhfrfid/tag_reader.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>

using namespace quarlin;  // NOLINT(google-build-using-namespace)

namespace {

using reference::Question;
using Bytes = std::vector<std::uint8_t>;

constexpr int kQuestions = 13;
constexpr int kUntouched = 0x7A7A7A7A;
constexpr std::uint8_t kRubbish = 0x5A;

// A reader that takes everything and answers with the input. Behind the answer the buffer holds rubbish.
class FuzzedReader final : public uhfrfid::ReaderTransport {
  public:
    explicit FuzzedReader(const Bytes& reply) : reply_(reply) {}

    bool Send(std::span<std::uint8_t>) override { return true; }
    std::optional<std::size_t> Receive(std::span<std::uint8_t> buffer) override {
        std::ranges::fill(buffer, kRubbish);
        std::ranges::copy(reply_, buffer.begin());
        return reply_.size();
    }

  private:
    const Bytes& reply_;
};

// A caller's variables. The buffer is on the heap and exactly as large as the caller says: a byte written behind it is
// noticed.
struct Caller {
    std::size_t size;
    std::unique_ptr<std::uint8_t[]> buffer;
    int length;
    int number = kUntouched;
    unsigned int unsignedNumber = kUntouched;

    Caller(std::size_t bytes, int capacity)
        : size(bytes), buffer(std::make_unique<std::uint8_t[]>(std::max<std::size_t>(bytes, 1))), length(capacity) {
        std::fill_n(buffer.get(), size, kRubbish);
    }
};

const uhfrfid::QueryParameter& ParameterOf(Question question) {
    switch (question) {
        case Question::kMiller:
            return uhfrfid::kMiller;
        case Question::kSession:
            return uhfrfid::kSession;
        case Question::kQBegin:
            return uhfrfid::kQBegin;
        default:
            return uhfrfid::kLinkFrequency;
    }
}

void Ask(uhfrfid::TagReader& reader, Question question, int room, Caller& caller) {
    constexpr unsigned char kGiven[]{1, 2, 3, 4};
    switch (question) {
        case Question::kInventory:
            reader.FindTag(uhfrfid::TagReader::Inventory::kFirst, reinterpret_cast<char*>(caller.buffer.get()),
                           &caller.length, &caller.number);
            break;
        case Question::kSelect:
            reader.Select(kGiven, 4);
            break;
        case Question::kRead:
            reader.ReadMemory(3, 0, kGiven, 4, caller.buffer.get(), room);
            break;
        case Question::kWrite:
            reader.WriteMemory(3, 0, kGiven, 4, kGiven, 2);
            break;
        case Question::kLock:
            reader.Lock(1, 2, kGiven, 4);
            break;
        case Question::kKill:
            reader.Kill(kGiven, 4);
            break;
        case Question::kSetPower:
            reader.SetPower(23);
            break;
        case Question::kGetPower:
            reader.GetPower(&caller.unsignedNumber);
            break;
        case Question::kSensitivity:
            reader.GetQuery(uhfrfid::kSensitivity, &caller.number);
            break;
        default:
            reader.GetQuery(ParameterOf(question), &caller.unsignedNumber);
    }
}

void Check(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "the reply was not taken as it is: %s\n", what);
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kHead = 2;
    if (size < kHead) {
        return 0;
    }
    size = std::min(size, kHead + uhfrfid::Reply::kCapacity);
    const auto question = static_cast<Question>(data[0] % kQuestions);
    const int room = data[1];
    const Bytes reply(data + kHead, data + size);
    const std::size_t wordSize = question == Question::kRead ? 2 : 1;

    const reference::Expectation expected = reference::ExpectedOf(question, room, reply);
    Caller caller(wordSize * static_cast<std::size_t>(room), room);
    FuzzedReader transport(reply);
    uhfrfid::TagReader reader(transport, 64);
    std::int32_t code = 0;
    std::string message;
    try {
        Ask(reader, question, room, caller);
    } catch (const QuarlinException& failure) {
        code = failure.code;
        message = failure.what();
    }

    Check(code == expected.code, "code");
    Check(message == expected.message, "message");
    Bytes buffer = expected.bytes;
    buffer.resize(caller.size, kRubbish);
    Check(std::equal(buffer.begin(), buffer.end(), caller.buffer.get()), "bytes");
    const bool lengthIsWritten = question == Question::kInventory && !expected.bytes.empty();
    Check(caller.length == (lengthIsWritten ? static_cast<int>(expected.bytes.size()) : room), "length");
    const bool isSigned = question == Question::kInventory || question == Question::kSensitivity;
    Check(caller.number == (isSigned ? expected.number.value_or(kUntouched) : kUntouched), "signed number");
    Check(caller.unsignedNumber ==
              static_cast<unsigned int>(isSigned ? kUntouched : expected.number.value_or(kUntouched)),
          "unsigned number");
    return 0;
}

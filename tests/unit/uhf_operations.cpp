// SPDX-License-Identifier: Apache-2.0
#include "scripted_reader.h"

namespace quarlin::test {
namespace {

using uhfrfid::TagReader;

void FindTag(TagReader& reader, TagReader::Inventory which) {
    char tagId[64];
    int length = sizeof tagId;
    int signal = 0;
    reader.FindTag(which, tagId, &length, &signal);
}

template <typename Value>
void Set(TagReader& reader, const uhfrfid::QueryParameter& parameter, Value value) {
    reader.SetQuery(parameter, &value);
}

template <typename Value>
void Get(TagReader& reader, const uhfrfid::QueryParameter& parameter) {
    Value value{};
    reader.GetQuery(parameter, &value);
}

constexpr unsigned char kPassword[]{1, 2, 3, 4};
constexpr unsigned char kTag[]{0x30, 0, 0xE2, 0x80};

}  // namespace

const std::vector<Operation>& Operations() {
    static const std::vector<Operation> kOperations{
        {"GetFirstTag", 0x44, 64, [](TagReader& r) { FindTag(r, TagReader::Inventory::kFirst); }},
        {"GetNextTag", 0x44, 64, [](TagReader& r) { FindTag(r, TagReader::Inventory::kNext); }},
        {"SelectTag", 0x34, 3, [](TagReader& r) { r.Select(kTag, sizeof kTag); }},
        {"ReadTag", 0x38, 64,
         [](TagReader& r) {
             unsigned char data[8];
             r.ReadMemory(3, 0, kPassword, 4, data, 4);
         }},
        {"WriteTag", 0x36, 4, [](TagReader& r) { r.WriteMemory(3, 0, kPassword, 4, kTag, 2); }},
        {"LockTag", 0x3C, 3, [](TagReader& r) { r.Lock(1, 2, kPassword, 4); }},
        {"KillTag", 0x3E, 3, [](TagReader& r) { r.Kill(kPassword, 4); }},
        {"SetPower", 0xC1, 3, [](TagReader& r) { r.SetPower(23); }},
        {"GetPower", 0xC3, 4,
         [](TagReader& r) {
             unsigned int power = 0;
             r.GetPower(&power);
         }},
        {"SetLinkFreq", 0x5A, 15, [](TagReader& r) { Set(r, uhfrfid::kLinkFrequency, 320U); }},
        {"SetMiller", 0x5A, 15, [](TagReader& r) { Set(r, uhfrfid::kMiller, 2U); }},
        {"SetSession", 0x5A, 15, [](TagReader& r) { Set(r, uhfrfid::kSession, 1U); }},
        {"SetQBegin", 0x5A, 15, [](TagReader& r) { Set(r, uhfrfid::kQBegin, 7U); }},
        {"SetSensitivity", 0x5A, 15, [](TagReader& r) { Set(r, uhfrfid::kSensitivity, -70); }},
        {"GetLinkFreq", 0x5A, 15, [](TagReader& r) { Get<unsigned int>(r, uhfrfid::kLinkFrequency); }},
        {"GetMiller", 0x5A, 15, [](TagReader& r) { Get<unsigned int>(r, uhfrfid::kMiller); }},
        {"GetSession", 0x5A, 15, [](TagReader& r) { Get<unsigned int>(r, uhfrfid::kSession); }},
        {"GetQBegin", 0x5A, 15, [](TagReader& r) { Get<unsigned int>(r, uhfrfid::kQBegin); }},
        {"GetSensitivity", 0x5A, 15, [](TagReader& r) { Get<int>(r, uhfrfid::kSensitivity); }},
    };
    return kOperations;
}

}  // namespace quarlin::test

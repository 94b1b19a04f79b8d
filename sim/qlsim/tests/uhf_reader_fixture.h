// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "memory_hid_socket.h"
#include "uhf/uhf_reader.h"

namespace quarlin::sim::testing {

inline Bytes Hex(const std::string& text) {
    return ParseHex(text).value();
}

inline Bytes Report(const std::string& text, std::size_t size = 64) {
    Bytes report = Hex(text);
    report.resize(size);
    return report;
}

inline const std::string kEpc = "3034257BF7194E4000001A85";
inline const std::string kRead = "37 09 03 00 00000000 02";
inline const std::string kReadReply = "38 40 00 02 00010203";
inline const std::string kInventory = "43 03 01";
inline const std::string kInventoryReply = "44 40 00 01 D0 000000 0E 3000" + kEpc;

inline UhfSettings OneTag() {
    UhfSettings settings;
    TagSettings tag;
    tag.epc = Hex(kEpc);
    tag.user = Hex("0001020304050607");
    tag.signal = -48;
    settings.tags.push_back(tag);
    return settings;
}

// The reader and a program that uses it.
class ReaderAtABus : public ::testing::Test {
  protected:
    explicit ReaderAtABus(const UhfSettings& settings = OneTag()) : socket_(place_), reader_(settings, socket_) {
        reader_.Plug();
    }

    bool Send(const std::string& command) { return place_.SetOutput(Report(command)); }
    // What has come until now.
    std::vector<std::string> Inputs() {
        std::vector<std::string> texts;
        for (const Bytes& report : place_.TakeInputs()) {
            EXPECT_EQ(64u, report.size());
            texts.push_back(HexText(UhfFrameOf(report)));
        }
        return texts;
    }
    void ExpectInput(const std::string& reply) {
        EXPECT_EQ((std::vector<std::string>{HexText(UhfFrameOf(Report(reply)))}), Inputs());
    }
    void ExpectSilence() { EXPECT_EQ(std::vector<std::string>(), Inputs()); }
    void Exchange(const std::string& command, const std::string& reply) {
        EXPECT_TRUE(Send(command)) << command;
        ExpectInput(reply);
    }
    std::string UserMemory() {
        return reader_.With([](UhfEngine& engine) { return HexText(engine.Field().at(0).tag.Memory(TagBank::kUser)); });
    }

    HidPlace place_;
    MemoryHidSocket socket_;
    UhfReader reader_;
};

}  // namespace quarlin::sim::testing

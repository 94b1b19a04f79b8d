// SPDX-License-Identifier: Apache-2.0
// What becomes of a scan on its way to the callback: fields, prefix, suffix and editing.
#include <climits>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "barcode/intermec_test_win.h"

namespace quarlin::test {
namespace {

class IntermecDelivery : public EnabledIntermec {
  protected:
    // What the callback gets for a scan.
    ReceivedScan Deliver(const IntermecScan& scan) {
        machine_.ScanIntermec(scan);
        return log_.AwaitCount(++delivered_);
    }
    std::string TextOf(const IntermecScan& scan) { return Deliver(scan).text; }
    std::string TextOf(std::string text) { return TextOf(IntermecScan::Of(std::move(text))); }

  private:
    std::size_t delivered_ = 0;
};

TEST_F(IntermecDelivery, BringsTheTextAndItsIdentifier) {
    const ReceivedScan scan = Deliver(IntermecScan::Of("4006381333931", "]E000"));
    EXPECT_EQ(scan.text, "4006381333931");
    EXPECT_EQ(scan.symbologyId, "]E000");
    EXPECT_TRUE(scan.hasSymbologyId);
    EXPECT_EQ(scan.deviceIndex, 0);
    EXPECT_EQ(Engine().TakeTexts(), Texts{"GetBarcodeDataEx"});
    EXPECT_EQ(FetchLastError(), Failure{});
}

TEST_F(IntermecDelivery, BringsIdentifiersOfAnyLengthThatAFieldMayHave) {
    for (const std::size_t length : {0U, 1U, 2U, 3U, 5U, 7U, 8U}) {
        const std::string id = std::string("]Cabcdef").substr(0, length);
        const ReceivedScan scan = Deliver(IntermecScan::Of("text", id));
        EXPECT_EQ(scan.symbologyId, id);
        EXPECT_EQ(scan.hasSymbologyId, length != 0);
    }
    // As the engine sent it, whatever that is.
    EXPECT_EQ(Deliver(IntermecScan::Of("text", "no id")).symbologyId, "no id");
}

TEST_F(IntermecDelivery, BringsEveryByte) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    EXPECT_EQ(TextOf(bytes), bytes);
    EXPECT_EQ(TextOf(std::string(1, '\0')), std::string(1, '\0'));
}

TEST_F(IntermecDelivery, BringsTextsThatFillTheEnginesBuffer) {
    constexpr std::size_t kRecord = 4096;
    constexpr std::size_t kHead = 13;
    for (const std::size_t length : {kRecord - kHead, kRecord - kHead - 1, std::size_t{3000}}) {
        std::string text(length, 'x');
        text.front() = '<';
        text.back() = '>';
        EXPECT_EQ(TextOf(text), text);
    }
    EXPECT_EQ(Deliver(IntermecScan::Of(std::string(kRecord - kHead - 8, 'x'), "]Cabcdef")).symbologyId, "]Cabcdef");
}

TEST_F(IntermecDelivery, ComesOnOneThreadOfTheLibrary) {
    std::set<DWORD> threads;
    for (int i = 0; i < 5; ++i) {
        threads.insert(Deliver(IntermecScan::Of("text")).thread);
    }
    ASSERT_EQ(threads.size(), 1U);
    EXPECT_EQ(*threads.begin(), GetWindowThreadProcessId(FindListenerWindow(), nullptr));
}

TEST_F(IntermecDelivery, KeepsTheOrderOfManyScans) {
    std::vector<std::string> expected;
    for (int i = 0; i < 300; ++i) {
        expected.push_back(std::to_string(i));
        machine_.ScanIntermec(expected.back());
    }
    log_.AwaitCount(expected.size());
    EXPECT_EQ(log_.Texts(), expected);
    EXPECT_EQ(log_.MostAtOnce(), 1);
}

TEST_F(IntermecDelivery, GoesToTheCallbackThatWasSetLast) {
    EXPECT_EQ(Deliver(IntermecScan::Of("one")).callback, 0);
    ASSERT_SUCCESS(QLBCR_SetCallback(ScanLog::Callback(1)));
    EXPECT_EQ(Deliver(IntermecScan::Of("two")).callback, 1);
    ASSERT_SUCCESS(QLBCR_SetCallback(ScanLog::Callback(0)));
    EXPECT_EQ(Deliver(IntermecScan::Of("three")).callback, 0);
}

IntermecScan FourFields() {
    IntermecScan scan = IntermecScan::Of("text", "]C0");
    scan.fields[0] = "a";
    scan.fields[1] = "b";
    scan.fields[3] = "d";
    return scan;
}

TEST_F(IntermecDelivery, PutsPrefixAndSuffixAroundTheEnginesFields) {
    EXPECT_EQ(TextOf(FourFields()), "abtextd");
    struct Place {
        unsigned int asTop;
        const char* before;
        const char* behind;
    };
    const Place places[] = {{0, "aP", "Sd"}, {1, "Pa", "dS"}, {2, "Pa", "dS"}, {255, "Pa", "dS"}, {256, "aP", "Sd"}};
    for (const Place& prefix : places) {
        for (const Place& suffix : places) {
            ASSERT_SUCCESS(QLBCR_SetPrefixData(prefix.asTop, "P"));
            ASSERT_SUCCESS(QLBCR_SetSuffixData(suffix.asTop, "S"));
            EXPECT_EQ(TextOf(FourFields()), std::string(prefix.before) + "btext" + suffix.behind)
                << prefix.asTop << " " << suffix.asTop;
        }
    }
}

TEST_F(IntermecDelivery, EditsTheThirdFieldAlone) {
    ASSERT_SUCCESS(QLBCR_SetPrefixData(0, "t"));
    ASSERT_SUCCESS(QLBCR_SetSuffixData(0, "t"));
    ASSERT_SUCCESS(QLBCR_SetDataEditingMode(QLBCR_EDIT_REPLACE, "t", "TT", 0, 0));
    IntermecScan scan = IntermecScan::Of("text", "]t0");
    scan.fields[0] = "t1";
    scan.fields[1] = "t2";
    scan.fields[3] = "t4";
    const ReceivedScan delivered = Deliver(scan);
    EXPECT_EQ(delivered.text, "t1tt2TTexTTtt4");
    EXPECT_EQ(delivered.symbologyId, "]t0");
}

struct Edit {
    unsigned int mode;
    const char* target;
    const char* content;
    int start;
    int end;
    const char* scanned;
    const char* delivered;
};

TEST_F(IntermecDelivery, EditsAsItIsSet) {
    const Edit edits[] = {
        {QLBCR_EDIT_REPLACE, "A", "AA", 0, 0, "ABA", "AABAA"},
        {QLBCR_EDIT_REPLACE, "A", "", 0, 0, "ABA", "ABA"},
        {QLBCR_EDIT_REPLACE, "", "x", 0, 0, "ABA", "ABA"},
        {QLBCR_EDIT_REPLACE, "ABA", "", 5, 5, "ABA", "ABA"},
        {QLBCR_EDIT_REPLACE, "AB", "-", INT_MIN, INT_MAX, "ABABA", "--A"},
        {QLBCR_EDIT_INSERT, "", "-", 2, 0, "1234", "12-34"},
        {QLBCR_EDIT_INSERT, "", "-", 4, 0, "1234", "1234-"},
        {QLBCR_EDIT_INSERT, "", "-", 5, 0, "1234", "1234"},
        {QLBCR_EDIT_INSERT, "", "-", 0, 0, "1234", "1234"},
        {QLBCR_EDIT_INSERT, "", "-", -1, 0, "1234", "123-4"},
        {QLBCR_EDIT_INSERT, "", "-", -3, 0, "1234", "1-234"},
        {QLBCR_EDIT_INSERT, "", "-", -4, 0, "1234", "1234"},
        {QLBCR_EDIT_INSERT, "", "-", INT_MIN, 0, "1234", "1234"},
        {QLBCR_EDIT_INSERT, "", "-", INT_MAX, 0, "1234", "1234"},
        {QLBCR_EDIT_INSERT, "", "-", 2, 0, "\xC3\xA4\xE2\x82\xACx", "\xC3\xA4\xE2\x82\xAC-x"},
        {QLBCR_EDIT_INSERT, "", "-", -1, 0, "\xC3\xA4\xF0\x9F\x93\xA6", "\xC3\xA4-\xF0\x9F\x93\xA6"},
        {QLBCR_EDIT_DELETE, "0", "", 0, 0, "10203", "123"},
        {QLBCR_EDIT_DELETE, "0", "", 1, 0, "0000", "0"},
        {QLBCR_EDIT_DELETE, "0", "", 0, 2, "0000", "00"},
        {QLBCR_EDIT_DELETE, "0", "", 0, -1, "0000", "0"},
        {QLBCR_EDIT_DELETE, "", "", 0, 0, "0000", "0000"},
        {QLBCR_EDIT_DELETE, "00", "ignored", 0, 0, "10001", "101"},
        {QLBCR_EDIT_NONE, "0", "1", 1, 1, "000", "000"},
        {4, "0", "1", 1, 1, "000", "000"},
        {UINT_MAX, "0", "1", 1, 1, "000", "000"},
    };
    for (const Edit& edit : edits) {
        ASSERT_SUCCESS(QLBCR_SetDataEditingMode(edit.mode, edit.target, edit.content, edit.start, edit.end));
        EXPECT_EQ(TextOf(edit.scanned), edit.delivered) << "mode " << edit.mode << " \"" << edit.target << "\" \""
                                                        << edit.content << "\" " << edit.start << " " << edit.end;
    }
}

// The next one to be taken up, and none before.
TEST_F(IntermecDelivery, TakesTheSettingsOfTheMoment) {
    for (int i = 0; i < 20; ++i) {
        ASSERT_SUCCESS(QLBCR_SetPrefixData(1, std::to_string(i).c_str()));
        EXPECT_EQ(TextOf("!"), std::to_string(i) + "!");
    }
}

TEST_F(IntermecDelivery, BringsTextsLongerThanAnyBuffer) {
    const std::string longText(100000, 'l');
    ASSERT_SUCCESS(QLBCR_SetPrefixData(1, longText.c_str()));
    ASSERT_SUCCESS(QLBCR_SetSuffixData(1, longText.c_str()));
    EXPECT_EQ(TextOf("-"), longText + "-" + longText);
}

TEST_F(IntermecDelivery, BringsAPrefixAloneAndNothingAtAll) {
    // Nothing to deliver: no callback.
    machine_.ScanIntermec(IntermecScan::Of("", "]C0"));
    Engine().AwaitCalls("GetBarcodeDataEx");
    ASSERT_SUCCESS(QLBCR_SetPrefixData(1, "P"));
    EXPECT_EQ(TextOf(""), "P");
    ASSERT_SUCCESS(QLBCR_SetPrefixData(1, ""));
    // Edited away.
    ASSERT_SUCCESS(QLBCR_SetDataEditingMode(QLBCR_EDIT_DELETE, "0", "", 0, 0));
    machine_.ScanIntermec("000");
    EXPECT_EQ(TextOf("010"), "1");
    EXPECT_EQ(log_.Texts(), (Texts{"P", "1"}));
}

TEST_F(IntermecDelivery, BringsFieldsAroundAnEmptyText) {
    IntermecScan scan = FourFields();
    scan.fields[2].clear();
    EXPECT_EQ(TextOf(scan), "abd");
    scan = {};
    scan.fields[3] = "d";
    EXPECT_EQ(TextOf(scan), "d");
}

}  // namespace
}  // namespace quarlin::test

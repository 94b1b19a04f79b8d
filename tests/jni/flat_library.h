// SPDX-License-Identifier: Apache-2.0
// Stands where qlsdk.dll's flat exports are when the Java wrappers run alone: every call is written down, and a test
// says what it answers. Unscripted calls succeed and leave their out values alone.
//
//     FlatLibrary flat;
//     flat.Gives("QLGPS_GetCoordinates", {47.5, 8.25, 400.0});
//     flat.Fails("QLBCR_Disable", QLERR_INVALID_STATE, "Not initialised");
//     ...
//     EXPECT_EQ(flat.TakeCalls(), Calls({"QLGPS_GetCoordinates()", "QLBCR_Disable()"}));
//
// How a call is written: "QLBCR_SetDataEditingMode(1, "abc", "", 0, 2)", "QLUHFRFID_SelectTag(0x1, [e2 00], 2)". Values
// that only go out are left out; values that go in and out are written as they come in: "QLBCR_GetDeviceName(128)".
// Handles are hexadecimal with all their bits, functions read "function", null pointers "null".
#pragma once

#include <quarlin/quarlin.h>

#include <any>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace quarlin::test {

// A value that goes out through a pointer: numbers, handles and truth values; numbers with a fraction; texts (UTF-8,
// written with their terminator into narrow or wide buffers); bytes.
using FlatValue = std::variant<std::int64_t, double, std::string, std::vector<std::uint8_t>>;

struct FlatError {
    QLerr code;
    std::string message;

    bool operator==(const FlatError&) const = default;
};

using Calls = std::vector<std::string>;

// One at a time. Its functions may be called from any thread; each thread has a last error of its own.
class FlatLibrary {
  public:
    FlatLibrary();
    // Fails the test for every problem that was not taken.
    ~FlatLibrary();
    FlatLibrary(const FlatLibrary&) = delete;
    FlatLibrary& operator=(const FlatLibrary&) = delete;

    // --- scripts, by name of the export; each lasts until another one replaces it ---
    // Every call answers this code, leaves the text as last error and writes no out value.
    void Fails(const std::string& name, QLerr code, const std::string& message);
    void Succeeds(const std::string& name);
    // Values for the out pointers in the order of the parameters; pointers beyond the list are left alone.
    void Gives(const std::string& name, std::vector<FlatValue> values);
    // A body for the call, with exactly the parameters of the export: [](GpsGlonassSatellite* records, int capacity) {
    // ... return QLERR_OK; }. It may throw. A code that it returns without LeaveError gets the text "NAME failed".
    template <typename Body>
    void Does(const std::string& name, Body body) {
        DoesAny(name, std::function(std::move(body)));
    }

    // --- the last error of the calling thread ---
    void LeaveError(QLerr code, const std::string& message);
    std::optional<FlatError> Error() const;
    void ForgetError();

    // --- what was seen ---
    // Calls of the families, in order, QLSTR_ and QLAPI_ ones left out. Forgets them.
    Calls TakeCalls();
    // Calls of QLSTR_ and QLAPI_ functions, in order; sizes and texts as above. Forgets them.
    Calls TakeHelperCalls();
    QLBCR_Callback BarcodeCallback() const;
    QLMSR_Callback CardCallback() const;
    // Wrong uses, such as a null pointer where a value goes out or a variable that was not zeroed before.
    std::vector<std::string> TakeProblems();

    // What every export of the stand-in does; see flat_library_call.h.
    void Note(const std::string& call, bool helper);
    void Problem(const std::string& text);
    struct Script {
        std::optional<FlatError> failure;
        std::vector<FlatValue> values;
        std::any body;
    };
    Script ScriptOf(const std::string& name) const;
    void Keep(QLBCR_Callback callback);
    void Keep(QLMSR_Callback callback);
    // The one that is alive; null (and a failed test) when there is none.
    static FlatLibrary* Current();

  private:
    void DoesAny(const std::string& name, std::any body);

    mutable std::mutex mutex_;
    std::map<std::string, Script> scripts_;
    Calls calls_;
    Calls helperCalls_;
    std::vector<std::string> problems_;
    QLBCR_Callback barcodeCallback_ = nullptr;
    QLMSR_Callback cardCallback_ = nullptr;
};

}  // namespace quarlin::test

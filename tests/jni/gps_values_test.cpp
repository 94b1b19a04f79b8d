// SPDX-License-Identifier: Apache-2.0
// The native methods of GPS that give texts and objects.
#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>

#include "methods_fixture.h"

#include "com_norvane_quarlin_gps_GPS.h"

namespace quarlin::test {
namespace {

constexpr const char* kCoordinates = "com/norvane/quarlin/gps/Coordinates";
constexpr const char* kSatellite = "com/norvane/quarlin/gps/GpsGlonassSatellite";
constexpr const char* kNoSuchField = "java/lang/NoSuchFieldError";

// --- the time stamp ---

class GpsTimeStamp : public NativeMethods {
  protected:
    jstring Ask(NativeCall& call) {
        return Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetTimeStamp(call.Env(), Owner(call, kGps));
    }
};

TEST_F(GpsTimeStamp, IsTheLibrarysText) {
    for (const std::string& text :
         {std::string("9:27:50 19/11/2094"), std::string(), std::string(" "), std::string(79, '7')}) {
        flat_.Gives("QLGPS_GetTimeStamp", {text});
        NativeCall call(vm_);
        EXPECT_EQ(call.ReturnedText(Ask(call)), text);
        EXPECT_EQ(call.Thrown(), std::nullopt);
        EXPECT_EQ(call.Locals(), 1);
        EXPECT_EQ(flat_.TakeCalls(), Calls({"QLGPS_GetTimeStamp()"}));
    }
}

TEST_F(GpsTimeStamp, IsEmptyWhenTheFunctionWritesNothing) {
    NativeCall call(vm_);
    const JavaRef text = call.Returned(Ask(call));
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(TextOf(text), "");
}

// A receiver may send anything.
TEST_F(GpsTimeStamp, HasNoBytesThatJavaDoesNotTake) {
    flat_.Gives("QLGPS_GetTimeStamp", {std::string("1\xFF"
                                                   "2\xC3")});
    NativeCall call(vm_);
    EXPECT_EQ(call.ReturnedText(Ask(call)),
              "1\xEF\xBF\xBD"
              "2\xEF\xBF\xBD");
}

TEST_F(GpsTimeStamp, IsNullAfterAFailure) {
    for (const RaisedFailure& failure : ResultFailures()) {
        flat_.Fails("QLGPS_GetTimeStamp", failure.code, kMessage);
        NativeCall call(vm_);
        EXPECT_EQ(Ask(call), nullptr);
        EXPECT_EQ(call.Thrown(), failure.exception);
        EXPECT_EQ(flat_.Error(), std::nullopt);
    }
    flat_.Does("QLGPS_GetTimeStamp", [](char*) -> QLerr { throw 7; });
    NativeCall call(vm_);
    EXPECT_EQ(Ask(call), nullptr);
    EXPECT_EQ(call.Thrown(), (JavaException{kRuntimeException, kOwnFailure}));
}

TEST_F(GpsTimeStamp, LeavesTheErrorOfAVmWithoutMemory) {
    vm_.FailOn("NewStringUTF");
    NativeCall call(vm_);
    EXPECT_EQ(Ask(call), nullptr);
    ASSERT_NE(call.Thrown(), std::nullopt);
    EXPECT_EQ(call.Thrown()->className, kOutOfMemory);
}

// --- coordinates ---

class GpsCoordinates : public NativeMethods {
  protected:
    GpsCoordinates() { vm_.DefineClass(kCoordinates).Fields("D", {"d_fld_1", "d_fld_2", "d_fld_3"}); }

    jint Ask(NativeCall& call, const JavaRef& coordinates) {
        return Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetCoordinates(call.Env(), Owner(call, kGps),
                                                                      call.Pass(coordinates));
    }
    // An object whose fields show whether they were written.
    JavaRef NewCoordinates() {
        JavaRef coordinates = vm_.New(kCoordinates);
        for (const char* const name : {"d_fld_1", "d_fld_2", "d_fld_3"}) {
            coordinates->fields[name] = -1.5;
        }
        return coordinates;
    }
    static std::vector<jdouble> ValuesOf(const JavaRef& coordinates) {
        return {coordinates->Double("d_fld_1"), coordinates->Double("d_fld_2"), coordinates->Double("d_fld_3")};
    }
};

TEST_F(GpsCoordinates, AreFilledInTheLibrarysOrder) {
    flat_.Gives("QLGPS_GetCoordinates", {47.5, -8.25, 400.125});
    const JavaRef coordinates = NewCoordinates();
    NativeCall call(vm_);
    EXPECT_EQ(Ask(call, coordinates), 0);
    EXPECT_EQ(call.Thrown(), std::nullopt);
    EXPECT_EQ(ValuesOf(coordinates), (std::vector<jdouble>{47.5, -8.25, 400.125}));
    EXPECT_EQ(call.Locals(), 0);
    EXPECT_EQ(flat_.TakeCalls(), Calls({"QLGPS_GetCoordinates()"}));
}

TEST_F(GpsCoordinates, MayBeOfAClassOfTheApplicationsOwn) {
    vm_.DefineClass("app/Place", kCoordinates);
    flat_.Gives("QLGPS_GetCoordinates", {1.0, 2.0, 3.0});
    const JavaRef place = vm_.New("app/Place");
    NativeCall call(vm_);
    EXPECT_EQ(Ask(call, place), 0);
    EXPECT_EQ(ValuesOf(place), (std::vector<jdouble>{1.0, 2.0, 3.0}));
}

TEST_F(GpsCoordinates, StayAsTheyAreAfterAFailure) {
    for (const RaisedFailure& failure : ResultFailures()) {
        flat_.Does("QLGPS_GetCoordinates", [&](double* latitude, double* longitude, double* altitude) {
            *latitude = *longitude = *altitude = 99;
            flat_.LeaveError(failure.code, kMessage);
            return failure.code;
        });
        const JavaRef coordinates = NewCoordinates();
        NativeCall call(vm_);
        EXPECT_EQ(Ask(call, coordinates), failure.code);
        EXPECT_EQ(call.Thrown(), failure.exception);
        EXPECT_EQ(ValuesOf(coordinates), std::vector<jdouble>(3, -1.5));
    }
}

TEST_F(GpsCoordinates, AreAnArgumentThatMustBeThere) {
    NativeCall call(vm_);
    EXPECT_EQ(Ask(call, nullptr), 0);
    EXPECT_EQ(call.Thrown(), (JavaException{kIllegalArgument, "coordinates cannot be NULL"}));
    EXPECT_EQ(call.Locals(), 0);
    EXPECT_EQ(flat_.TakeCalls(), Calls());
}

TEST_F(GpsCoordinates, WithoutAFieldAreAnErrorOfTheVm) {
    vm_.DefineClass("app/Flat").Fields("D", {"d_fld_1", "d_fld_2"});
    vm_.DefineClass("app/Float").Fields("D", {"d_fld_1", "d_fld_2"}).Field("d_fld_3", "F");
    for (const char* const name : {"app/Flat", "app/Float"}) {
        NativeCall call(vm_);
        EXPECT_EQ(Ask(call, vm_.New(name)), 0);
        ASSERT_NE(call.Thrown(), std::nullopt);
        EXPECT_EQ(call.Thrown()->className, kNoSuchField);
        EXPECT_EQ(call.Locals(), 0);
    }
}

TEST_F(GpsCoordinates, OfAFunctionThatThrowsStayAsTheyAre) {
    flat_.Does("QLGPS_GetCoordinates", [](double*, double*, double*) -> QLerr { throw std::runtime_error("inside"); });
    const JavaRef coordinates = NewCoordinates();
    NativeCall call(vm_);
    EXPECT_EQ(Ask(call, coordinates), 0);
    EXPECT_EQ(call.Thrown(), (JavaException{kRuntimeException, kOwnFailure}));
    EXPECT_EQ(ValuesOf(coordinates), std::vector<jdouble>(3, -1.5));
}

// --- satellites ---

class GpsSatellites : public NativeMethods {
  protected:
    GpsSatellites() {
        vm_.DefineClass(kSatellite)
            .Constructor("()V",
                         [this](JavaCall&) {
                             if (++made_ == failing_) {
                                 throw JavaThrow{kBroken, "no more"};
                             }
                         })
            .Fields("I", {"PRN", "Elevation", "Azimuth", "SNR", "used"});
    }

    jobjectArray Ask(NativeCall& call, jint count) {
        return Java_com_norvane_quarlin_gps_GPS_QLGPS_1GetSatellites(call.Env(), Owner(call, kGps), count);
    }
    // The library knows so many.
    void Publish(int satellites) {
        flat_.Does("QLGPS_GetSatellites", [satellites](GpsGlonassSatellite* records, int capacity) {
            if (satellites > capacity) {
                return QLERR_BUFFER_OVERFLOW;
            }
            for (int i = 0; i < satellites; ++i) {
                records[i] = {i + 1, -i, 300 + i, 1000 * i, i % 2};
            }
            return QLERR_OK;
        });
    }
    static std::vector<jint> ValuesOf(const JavaRef& satellite) {
        return {satellite->Int("PRN"), satellite->Int("Elevation"), satellite->Int("Azimuth"), satellite->Int("SNR"),
                satellite->Int("used")};
    }
    // The constructor throws at the nth object.
    void FailAt(int nth) { failing_ = nth; }
    int Made() const { return made_; }
    void ExpectVmError(const std::string& className) {
        NativeCall call(vm_);
        EXPECT_EQ(Ask(call, 5), nullptr);
        ASSERT_NE(call.Thrown(), std::nullopt);
        EXPECT_EQ(call.Thrown()->className, className);
        EXPECT_TRUE(vm_.TakeFailures());
    }

    static constexpr const char* kBroken = "app/Broken";

  private:
    int made_ = 0;
    int failing_ = 0;
};

TEST_F(GpsSatellites, AreOneObjectForEachOfTheNumberAskedFor) {
    for (const int count : {1, 2, 24, 150, 151}) {
        const int published = std::min(count, 150);
        Publish(published);
        NativeCall call(vm_);
        const JavaRef array = call.Returned(Ask(call, count));
        EXPECT_EQ(call.Thrown(), std::nullopt);
        ASSERT_NE(array, nullptr);
        EXPECT_EQ(array->type->Name(), "[Lcom/norvane/quarlin/gps/GpsGlonassSatellite;");
        const std::vector<JavaRef> satellites = ObjectsOf(array);
        ASSERT_EQ(satellites.size(), static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            const JavaRef& satellite = satellites[static_cast<std::size_t>(i)];
            ASSERT_NE(satellite, nullptr);
            EXPECT_EQ(satellite->constructor, "()V");
            EXPECT_EQ(ValuesOf(satellite), i < published ? (std::vector<jint>{i + 1, -i, 300 + i, 1000 * i, i % 2})
                                                         : std::vector<jint>(5, 0));
        }
        EXPECT_EQ(flat_.TakeCalls(), Calls({"QLGPS_GetSatellites(" + std::to_string(published) + ")"}));
        EXPECT_EQ(call.Locals(), 1);
        EXPECT_LE(call.PeakLocals(), 6);
    }
}

TEST_F(GpsSatellites, BeyondThePublishedOnesAreZero) {
    Publish(3);
    NativeCall call(vm_);
    const std::vector<JavaRef> satellites = ObjectsOf(call.Returned(Ask(call, 150)));
    ASSERT_EQ(satellites.size(), 150U);
    EXPECT_EQ(ValuesOf(satellites[2]), (std::vector<jint>{3, -2, 302, 2000, 0}));
    for (std::size_t i = 3; i < satellites.size(); ++i) {
        ASSERT_EQ(ValuesOf(satellites[i]), std::vector<jint>(5, 0)) << i;
    }
}

TEST_F(GpsSatellites, KeepTheWholeRangeOfTheirNumbers) {
    constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    flat_.Does("QLGPS_GetSatellites", [](GpsGlonassSatellite* records, int) {
        records[0] = {-1, kLeast, kMost, 0, -1};
        return QLERR_OK;
    });
    NativeCall call(vm_);
    const JavaRef array = call.Returned(Ask(call, 1));
    EXPECT_EQ(ValuesOf(ObjectsOf(array).at(0)), (std::vector<jint>{-1, kLeast, kMost, 0, -1}));
}

// The library gets a place for records all the same, and decides.
TEST_F(GpsSatellites, OfNoneOrFewerAreAnEmptyArray) {
    for (const jint count : {0, -1, std::numeric_limits<jint>::min()}) {
        Publish(0);
        NativeCall call(vm_);
        const JavaRef array = call.Returned(Ask(call, count));
        EXPECT_EQ(call.Thrown(), std::nullopt);
        ASSERT_NE(array, nullptr);
        EXPECT_TRUE(ObjectsOf(array).empty());
        EXPECT_EQ(flat_.TakeCalls(), Calls({"QLGPS_GetSatellites(0)"}));

        Publish(1);
        NativeCall tooMany(vm_);
        EXPECT_EQ(Ask(tooMany, count), nullptr);
        EXPECT_EQ(tooMany.Thrown(), BufferOverflow("QLGPS_GetSatellites failed"));
        flat_.TakeCalls();
    }
}

TEST_F(GpsSatellites, AreNullAfterAFailure) {
    for (const RaisedFailure& failure : ResultFailures()) {
        flat_.Fails("QLGPS_GetSatellites", failure.code, kMessage);
        NativeCall call(vm_);
        EXPECT_EQ(Ask(call, 150), nullptr);
        EXPECT_EQ(call.Thrown(), failure.exception);
        EXPECT_EQ(flat_.Error(), std::nullopt);
        EXPECT_EQ(call.Locals(), 0);
    }
    flat_.Does("QLGPS_GetSatellites", [](GpsGlonassSatellite*, int) -> QLerr { throw std::bad_alloc(); });
    NativeCall call(vm_);
    EXPECT_EQ(Ask(call, 150), nullptr);
    EXPECT_EQ(call.Thrown(), (JavaException{kRuntimeException, kOwnFailure}));
}

TEST_F(GpsSatellites, LeaveTheErrorOfAVmThatCannotMakeThem) {
    Publish(5);
    for (const int nth : {1, 3, 5}) {
        vm_.FailOn("NewObject", nth);
        ExpectVmError(kOutOfMemory);
    }
    vm_.FailOn("NewObjectArray");
    ExpectVmError(kOutOfMemory);
    vm_.FailOn("GetMethodID");
    ExpectVmError("java/lang/NoSuchMethodError");
    for (int nth = 1; nth <= 5; ++nth) {
        vm_.FailOn("GetFieldID", nth);
        ExpectVmError(kNoSuchField);
    }
    vm_.HideClass(kSatellite);
    ExpectVmError("java/lang/NoClassDefFoundError");
}

TEST_F(GpsSatellites, LeaveTheExceptionOfTheirConstructor) {
    vm_.DefineException(kBroken);
    Publish(5);
    FailAt(3);
    NativeCall call(vm_);
    EXPECT_EQ(Ask(call, 5), nullptr);
    EXPECT_EQ(call.Thrown(), (JavaException{kBroken, "no more"}));
    EXPECT_EQ(Made(), 3);
}

}  // namespace
}  // namespace quarlin::test

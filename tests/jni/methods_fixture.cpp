// SPDX-License-Identifier: Apache-2.0
#include "methods_fixture.h"

#include <new>

#include "com_norvane_quarlin_uhfrfid_CoreNatives.h"

namespace quarlin::test {

namespace {

constexpr const char* kIllegalState = "java/lang/IllegalStateException";
constexpr const char* kIoException = "java/io/IOException";
constexpr const char* kUnsupported = "java/lang/UnsupportedOperationException";

// Beyond the seven of every family: the reader's own, and some that nobody has.
const std::vector<QLerr>& OtherCodes() {
    static const std::vector<QLerr> codes = [] {
        std::vector<QLerr> all = {QLERR_UHFRFID_REQ_NOT_ALLOWED,
                                  QLERR_UHFRFID_ACCESS,
                                  QLERR_UHFRFID_KILL,
                                  QLERR_UHFRFID_NOREPLY,
                                  QLERR_UHFRFID_LOCK,
                                  QLERR_UHFRFID_WRITE,
                                  QLERR_UHFRFID_ERASE,
                                  QLERR_UHFRFID_READ,
                                  QLERR_UHFRFID_SELECT,
                                  QLERR_UHFRFID_CHANNEL_TIMEOUT,
                                  QLERR_UHFRFID_INVALID_PARAMETER2,
                                  QLERR_UHFRFID_EASCODE,
                                  QLERR_UHFRFID_OTHER,
                                  QLERR_UHFRFID_MEMORY_OVERRUN,
                                  QLERR_UHFRFID_MEMORY_LOCKED,
                                  QLERR_UHFRFID_INSUFFICIENT_POWER,
                                  QLERR_UHFRFID_NONSPECIFIC,
                                  QLERR_UHFRFID_READONLY_ADDRESS,
                                  QLERR_UHFRFID_PCIE_RADIO_DISABLED,
                                  QLERR_UHFRFID_SECURITY_FAILURE,
                                  QLERR_UHFRFID_HW_FAILURE,
                                  QLERR_UHFRFID_INVALID_HANDLE,
                                  QLERR_UHFRFID_NO_TAGS,
                                  QLERR_UHFRFID_COMMAND_SEND,
                                  QLERR_UHFRFID_COMMAND_RECEIVE,
                                  QLERR_UHFRFID_BUFFERTOOSMALL,
                                  QLERR_UHFRFID_BUFFERTOOBIG,
                                  QLERR_UHFRFID_SYSTEM,
                                  QLERR_UHFRFID_DEVICENOTFOUND,
                                  QLERR_UHFRFID_UNCLASSIFIED};
        for (const int unknown : {7, 0x10000, 0x7FFFFFFF, -1}) {
            all.push_back(static_cast<QLerr>(unknown));
        }
        return all;
    }();
    return codes;
}

}  // namespace

const std::vector<RaisedFailure>& ResultFailures() {
    static const std::vector<RaisedFailure> failures = [] {
        std::vector<RaisedFailure> all = {
            {QLERR_INVALID_ARGUMENT, {kIllegalArgument, kMessage}},
            {QLERR_INVALID_STATE, {kIllegalState, kMessage}},
            {QLERR_IO_ERROR, {kIoException, kMessage}},
            {QLERR_OP_UNSUPPORTED, {kUnsupported, kMessage}},
            {QLERR_INTERNAL_ERROR, {kRuntimeException, kMessage}},
            {QLERR_BUFFER_OVERFLOW, BufferOverflow(kMessage)},
        };
        for (const QLerr code : OtherCodes()) {
            all.push_back({code, {kRuntimeException, kMessage}});
        }
        return all;
    }();
    return failures;
}

const std::vector<RaisedFailure>& RfidFailures() {
    static const std::vector<RaisedFailure> failures = [] {
        const std::string message = kMessage;
        std::vector<RaisedFailure> all = {
            {QLERR_INVALID_ARGUMENT, {kIllegalArgument, message}},
            {QLERR_INVALID_STATE, {kIllegalState, message}},
            {QLERR_IO_ERROR, {kIoException, message}},
            {QLERR_OP_UNSUPPORTED, {kUnsupported, message}},
            {QLERR_INTERNAL_ERROR, {kRfidException, "Unknown," + message}},
            {QLERR_BUFFER_OVERFLOW, {kRfidException, "QLERR_BUFFER_OVERFLOW," + message}},
        };
        for (const QLerr code : OtherCodes()) {
            all.push_back({code, {kRfidException, "Unexpected behaviour encountered," + message}});
        }
        return all;
    }();
    return failures;
}

const std::vector<ThrownInside>& ThrownInsideAFunction() {
    static const std::vector<ThrownInside> exceptions = {
        {"an error with a text", [] { throw std::runtime_error("inside"); }},
        {"no memory", [] { throw std::bad_alloc(); }},
        {"a number", [] { throw 7; }},
    };
    return exceptions;
}

void RfidMethods::SetUp() {
    vm_.DefineException(kRfidException);
    NativeCall call(vm_);
    ASSERT_EQ(Java_com_norvane_quarlin_uhfrfid_CoreNatives_nInit(call.Env(), Owner(call, kRfidCoreNatives),
                                                                 call.Class(kRfidException)),
              JNI_TRUE);
}

}  // namespace quarlin::test

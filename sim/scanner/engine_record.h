// SPDX-License-Identifier: Apache-2.0
// What the stand-in scanner libraries have in common in their records: which statuses and answers they are told to
// give, which calls they got, and the scans that are on their way. The stand-in in each program, qlsim and tests open
// the same record (shared/shared_section_win.h).
//
// The record's lock guards all of it except what is said to do without: a scan's way is measured, and no lock that
// programs share may lie on it.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace quarlin::sim {

// A function that refuses: after `skip` more calls, the next `count` calls answer `status` and do nothing else.
struct Refusal {
    static constexpr std::uint32_t kAlways = 0xFFFFFFFF;

    std::uint32_t skip;
    std::uint32_t count;  // 0: it does not refuse
    std::uint16_t status;
    // Refuses, skips and counts only requests that begin with these two bytes (0x7340: 73 40); 0: whatever they are.
    std::uint16_t beginning;
};

// An answer to frame, menu and firmware calls that is not what the engine would say: given by the next `count` calls of
// `function`, which succeed and do their work.
struct AnswerInstead {
    static constexpr std::size_t kRoom = 4096;

    std::uint32_t function;
    std::uint32_t count;    // 0: not in use; Refusal::kAlways: for good
    std::uint32_t length;   // that many of `bytes` are written, but no more than the caller has room for
    std::uint32_t claimed;  // the length that the caller is told, whatever was written
    std::uint8_t bytes[kRoom];
};

inline constexpr std::size_t kAnswersInstead = 4;

// The next call of `function` stops before it does anything, sets `held` and the library's kHeldEvent, and goes on when
// kGoOnEvent is set (both auto-reset), or after half a minute. The record's lock is free meanwhile.
struct Hold {
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    std::uint32_t function;  // kNone: none; it becomes that again when a call is held
    std::uint32_t held;      // calls that were held
};

// One call of a library's function.
struct EngineCall {
    static constexpr std::size_t kRoom = 160;

    std::uint64_t mark;  // the call's number + 1 once all of it is written
    std::uint32_t function;
    std::uint32_t library;  // which of the libraries that share the record; see there
    std::uint32_t process;
    std::uint32_t thread;
    std::uint32_t status;        // without the dirt
    std::uint32_t answerLength;  // what the caller was told; 0 where nothing is told
    std::uint64_t milliseconds;  // of the machine's clock (GetTickCount64)
    // Numbers and addresses in the order of the parameters; what goes in as text, frame or input is in `request`.
    // Intermec frames and scans: the last one is what the answer's length was before the call.
    std::int64_t arguments[4];
    std::uint32_t requestLength;  // as the caller gave it; of a text without length, that without terminator
    std::uint32_t requestBytes;   // of them in `request`, cut to its room
    std::uint8_t request[kRoom];
};

// Written without the record's lock.
struct EngineCallLog {
    static constexpr std::uint64_t kRoom = 512;

    std::uint64_t count;      // all calls since the log was cleared
    EngineCall calls[kRoom];  // the last ones: call n is at n modulo kRoom

    void Add(const EngineCall& call) {
        const std::uint64_t number = std::atomic_ref(count).fetch_add(1);
        EngineCall& place = calls[number % kRoom];
        place = call;
        std::atomic_ref(place.mark).store(number + 1, std::memory_order_release);
    }
    std::uint64_t Count() { return std::atomic_ref(count).load(std::memory_order_acquire); }
    std::uint64_t First() {
        const std::uint64_t all = Count();
        return all < kRoom ? 0 : all - kRoom;
    }
    // Null when it is still being written, or has been overwritten.
    const EngineCall* At(std::uint64_t number) {
        EngineCall& place = calls[number % kRoom];
        return std::atomic_ref(place.mark).load(std::memory_order_acquire) == number + 1 ? &place : nullptr;
    }
    // Not while a program calls the library.
    void Clear() {
        for (EngineCall& call : calls) {
            call.mark = 0;
        }
        std::atomic_ref(count).store(0);
    }
};

// One scan on its way from whoever shows a code to the engine. What `bytes` holds is the library's affair; scan_bytes.h
// makes it.
struct ScanSlot {
    static constexpr std::size_t kRoom = 4608;

    std::uint32_t length;     // bytes in use
    std::uint32_t claimed;    // the length that the library tells its caller
    std::uint32_t eventType;  // Honeywell: the event type, 1 for a scan; Intermec: wParam of the message, 100 for one
    std::uint32_t flags;      // kScanNoData, ...
    std::uint8_t bytes[kRoom];
};
// Announced without anything behind it (Intermec: GetBarcodeDataEx then finds nothing; Honeywell: a null pointer).
inline constexpr std::uint32_t kScanNoData = 1;
// Put into the engine without being announced.
inline constexpr std::uint32_t kScanSilent = 2;
// Held back until the library disconnects: announced from within Disconnect, by the thread that called it.
inline constexpr std::uint32_t kScanWhileDisconnecting = 4;

// Scans that the library fetches, oldest first, while it is connected and when it connects. Whoever adds one sets the
// library's kScanEvent afterwards; while it is full he waits for kFetchedEvent (both auto-reset). scan_sender_win.h
// does that.
struct ScanInbox {
    static constexpr std::uint64_t kRoom = 64;

    std::uint64_t added;
    std::uint64_t fetched;
    ScanSlot slots[kRoom];  // scan n is at n modulo kRoom

    bool IsFull() const { return added - fetched >= kRoom; }
    bool IsEmpty() const { return added == fetched; }
    void Add(const ScanSlot& scan) { slots[added++ % kRoom] = scan; }
    const ScanSlot& Oldest() const { return slots[fetched % kRoom]; }
};

// A benchmark's scan, sent again and again by the library's own thread. Whoever wants one fills the rest, raises
// `ordered` by one, with the lock, and sets the library's kScanEvent. The counters below are written without the lock.
struct Burst {
    std::uint64_t ordered;  // bursts that were asked for
    std::uint64_t count;    // so many scans each
    std::uint64_t ahead;    // no more than this before `handled` follows; 0 or more than kMostAhead: kMostAhead
    // Scan i of a burst, from 0, carries `first` + i as decimal text, zeroes before it, in `digits` bytes from
    // `numberAt` in the scan's bytes; digits 0: every scan is the same.
    std::uint64_t first;
    std::uint32_t numberAt;
    std::uint32_t digits;
    ScanSlot scan;

    static constexpr std::uint64_t kMostAhead = 48;

    std::uint64_t sent;     // scans of this burst that were announced
    std::uint64_t handled;  // and that the receiving program has handled: it counts them (CountHandled)
    std::uint64_t done;     // bursts that have ended; also one that was cut off by Disconnect

    void CountHandled() { std::atomic_ref(handled).fetch_add(1, std::memory_order_release); }
    std::uint64_t Handled() { return std::atomic_ref(handled).load(std::memory_order_acquire); }
    std::uint64_t Sent() { return std::atomic_ref(sent).load(std::memory_order_acquire); }
    std::uint64_t Done() { return std::atomic_ref(done).load(std::memory_order_acquire); }
    // The order, by whoever holds the record's lock: the fields before it are filled.
    void Order() {
        std::atomic_ref(sent).store(0);
        std::atomic_ref(handled).store(0);
        ++ordered;
    }
};

// When the engine announced its scans (also those of bursts): performance counter, taken just before the message was
// posted or the callback called. Written without the record's lock.
struct Announcements {
    static constexpr std::uint64_t kRoom = 4096;

    std::uint64_t count;
    std::int64_t at[kRoom];  // announcement n is at n modulo kRoom

    void Add(std::int64_t now) {
        const std::uint64_t number = std::atomic_ref(count).load(std::memory_order_relaxed);
        std::atomic_ref(at[number % kRoom]).store(now, std::memory_order_relaxed);
        std::atomic_ref(count).store(number + 1, std::memory_order_release);
    }
    std::uint64_t Count() { return std::atomic_ref(count).load(std::memory_order_acquire); }
    std::int64_t At(std::uint64_t number) {
        return std::atomic_ref(at[number % kRoom]).load(std::memory_order_relaxed);
    }
};

// What a library is told and what it tells, whichever functions it has.
template <std::size_t functionCount>
struct EngineRecord {
    Refusal refusals[functionCount];
    AnswerInstead answersInstead[kAnswersInstead];
    Hold hold;
    EngineCallLog log;
    ScanInbox inbox;
    Burst burst;
    Announcements announcements;
    std::uint64_t fetchedScans;  // since the record was filled

    // Refuses from now on, or so many times.
    template <typename Function>
    void Refuse(Function function, std::uint16_t status, std::uint32_t count = Refusal::kAlways, std::uint32_t skip = 0,
                std::uint16_t beginning = 0) {
        refusals[static_cast<std::size_t>(function)] = {skip, count, status, beginning};
    }
};

// The upper half of the register that a status comes back in.
inline constexpr std::uint32_t kStatusDirt = 0xA55A0000;

}  // namespace quarlin::sim

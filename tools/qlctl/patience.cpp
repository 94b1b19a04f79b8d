// SPDX-License-Identifier: Apache-2.0
#include "patience.h"

#include "view/text.h"

#include <algorithm>
#include <future>
#include <thread>

namespace quarlin::qlctl {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kLook{20};
constexpr std::chrono::seconds kLeastForACall{1};
// A reader that works answers in much less.
constexpr milliseconds kGraceAfterStop{500};

}  // namespace

Patience::Patience(std::optional<Clock::duration> timeout, std::function<bool()> wantsToStop)
    : timeout_(timeout), wantsToStop_(std::move(wantsToStop)) {
    if (timeout_) {
        end_ = Clock::now() + *timeout_;
    }
}

Patience::Clock::time_point Patience::LimitOf(Clock::time_point begin) const {
    if (!timeout_) {
        return begin + kUsualLimit;
    }
    return std::max(*end_, begin + std::min<Clock::duration>(*timeout_, kLeastForACall));
}

void Patience::Await(std::function<void()> call) const {
    std::packaged_task<void()> task(std::move(call));
    std::future<void> done = task.get_future();
    std::thread thread(std::move(task));
    const Clock::time_point limit = LimitOf(Clock::now());
    std::optional<Clock::time_point> stopLimit;
    while (done.wait_for(kLook) != std::future_status::ready) {
        const Clock::time_point now = Clock::now();
        if (!stopLimit && wantsToStop_()) {
            stopLimit = now + kGraceAfterStop;
        }
        if (stopLimit && now >= *stopLimit) {
            thread.detach();
            throw AbandonedCall(ExitStatus::kInterrupted, "stopped before the reader answered");
        }
        if (now >= limit) {
            thread.detach();
            throw AbandonedCall(ExitStatus::kTimedOut, "the reader did not answer within " + Span());
        }
    }
    thread.join();
    done.get();
}

std::string Patience::Span() const {
    const std::chrono::duration<double> span = timeout_.value_or(kUsualLimit);
    return Fixed(span.count(), 1) + " s";
}

}  // namespace quarlin::qlctl

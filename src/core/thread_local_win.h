// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>

namespace quarlin {

// One slot of the system's thread-local storage. What the slots point to belongs to whoever stored it: records of
// threads that end, or that are left when the library is unloaded, are not freed.
class ThreadLocal {
  public:
    ThreadLocal();
    ThreadLocal(const ThreadLocal&) = delete;
    ThreadLocal& operator=(const ThreadLocal&) = delete;
    ~ThreadLocal();

    // The calling thread's pointer; null until it stored one.
    void* Get() const;
    void Set(void* value);

  private:
    std::uint32_t Index() const;

    std::unique_ptr<std::uint32_t> index_;
};

}  // namespace quarlin

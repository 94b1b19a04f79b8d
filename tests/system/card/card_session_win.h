// SPDX-License-Identifier: Apache-2.0
// The card readers of the library under test, through its exported functions.
#pragma once

#include <quarlin/card_reader.h>

#include <map>
#include <string>
#include <vector>

#include "card/swipe_log_win.h"
#include "card/test_reader_win.h"

namespace quarlin::test {

// The family initialised; uninitialised at the end of the scope.
class CardSession {
  public:
    CardSession();
    CardSession(const CardSession&) = delete;
    CardSession& operator=(const CardSession&) = delete;
    ~CardSession();
};

// These throw std::runtime_error when the library fails.
std::vector<MagStripeReaderInfo> ListReaders();
// The same, as the readers' serial numbers under their indexes.
std::map<int, std::string> ListSerials();
void Select(int index);
void Enable();
void Disable();
bool IsEnabled();
// Of one of the log's callbacks; gives its identifier.
unsigned int AddCallback(int number = 0);

// The family with one reader, index 0, plugged in and listed. Callback 0 is added.
class OneReader {
  public:
    explicit OneReader(ReaderSettings settings = {});

    SwipeLog& Log() { return log_; }
    TestReader& Reader() { return reader_; }
    unsigned int Callback() const { return callback_; }

  private:
    CardReaderTurn turn_;
    SwipeLog log_;
    TestReader reader_;
    CardSession session_;
    unsigned int callback_ = 0;
};

// The same, and enabled.
class EnabledReader : public OneReader {
  public:
    explicit EnabledReader(ReaderSettings settings = {});
};

}  // namespace quarlin::test

// Reads the text of the sheet in front while the user does nothing.
#pragma once

#include <rtl/ref.hxx>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include "host/calc/Office.h"

namespace rowlark::calc {

class AheadListener;

// Its thread only waits: what is read is read on the main thread, piece by piece.
class ReadAhead {
 public:
  explicit ReadAhead(std::shared_ptr<Office> office);
  ReadAhead(const ReadAhead&) = delete;
  ReadAhead& operator=(const ReadAhead&) = delete;
  ~ReadAhead();

  // There is something to read.
  void Wake() noexcept;
  bool Idle() const noexcept;

 private:
  friend class AheadListener;

  void Wait();       // the thread
  void ReadPiece();  // on the main thread

  const std::shared_ptr<Office> office_;
  rtl::Reference<AheadListener> listener_;
  mutable std::mutex mutex_;
  std::condition_variable wake_;
  enum class State { Idle, Due, Posted, Ended } state_ = State::Due;  // guarded by mutex_
  std::thread thread_;
};

}  // namespace rowlark::calc

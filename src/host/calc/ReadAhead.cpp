#include "host/calc/ReadAhead.h"

#include <com/sun/star/awt/AsyncCallback.hpp>
#include <com/sun/star/frame/theGlobalEventBroadcaster.hpp>
#include <cppuhelper/implbase2.hxx>

#include <chrono>
#include <utility>

#include "host/calc/Workbook.h"

namespace rowlark::calc {
namespace {

using com::sun::star::document::DocumentEvent;
using com::sun::star::frame::theGlobalEventBroadcaster;

// Between two pieces, for whatever else the user's window has to do.
constexpr auto kPause = std::chrono::milliseconds(10);

}  // namespace

// Hears of documents that come to the front, and brings what is due onto the main thread.
class AheadListener final : public cppu::WeakImplHelper2<com::sun::star::document::XDocumentEventListener,
                                                         com::sun::star::awt::XCallback> {
 public:
  explicit AheadListener(ReadAhead& ahead) : ahead_(&ahead) {}
  void Abandon() { ahead_ = nullptr; }

  void SAL_CALL documentEventOccured(const DocumentEvent& event) override {
    if (ahead_ == nullptr) return;
    for (const auto* name : {"OnFocus", "OnNew", "OnLoadFinished", "OnViewCreated"}) {
      if (event.EventName.equalsAscii(name)) ahead_->Wake();
    }
  }
  void SAL_CALL notify(const uno::Any&) override {
    if (ahead_ != nullptr) ahead_->ReadPiece();
  }
  void SAL_CALL disposing(const com::sun::star::lang::EventObject&) override {}

 private:
  ReadAhead* ahead_;  // on the main thread
};

ReadAhead::ReadAhead(std::shared_ptr<Office> office)
    : office_(std::move(office)), listener_(new AheadListener(*this)) {
  theGlobalEventBroadcaster::get(office_->Context)->addDocumentEventListener(listener_.get());
  thread_ = std::thread([this] { Wait(); });
}

ReadAhead::~ReadAhead() {
  listener_->Abandon();
  {
    const std::lock_guard guard(mutex_);
    state_ = State::Ended;
  }
  wake_.notify_one();
  thread_.join();
  Attempt(office_->Trace, [this] {
    theGlobalEventBroadcaster::get(office_->Context)->removeDocumentEventListener(listener_.get());
  });
}

void ReadAhead::Wake() noexcept {
  const std::lock_guard guard(mutex_);
  if (state_ != State::Idle) return;
  state_ = State::Due;
  wake_.notify_one();
}

bool ReadAhead::Idle() const noexcept {
  const std::lock_guard guard(mutex_);
  return state_ == State::Idle;
}

void ReadAhead::Wait() {
  std::unique_lock lock(mutex_);
  while (state_ != State::Ended) {
    wake_.wait(lock, [this] { return state_ == State::Due || state_ == State::Ended; });
    if (wake_.wait_for(lock, kPause, [this] { return state_ == State::Ended; })) return;
    state_ = State::Posted;
    lock.unlock();
    const bool posted = Attempt(office_->Trace, [this] {
      com::sun::star::awt::AsyncCallback::create(office_->Context)->addCallback(listener_.get(), {});
    });
    lock.lock();
    if (!posted && state_ == State::Posted) state_ = State::Idle;
  }
}

void ReadAhead::ReadPiece() {
  const bool done = AttemptOr(office_->Trace, true, [this] {
    const auto book = office_->ActiveBook();
    const auto sheet = book ? book->ActiveCells() : nullptr;
    return !sheet || sheet->ReadText();
  });
  const std::lock_guard guard(mutex_);
  if (state_ == State::Ended) return;
  state_ = done ? State::Idle : State::Due;
  wake_.notify_one();
}

}  // namespace rowlark::calc

// Lets a session on the sheet model search in Calc: before each search the document becomes what the model
// is, step by step as a user and another program change it, and afterwards the model takes over what the
// search did.
#pragma once

#include <memory>

#include "Document.h"
#include "Session.h"
#include "host/calc/Application.h"

namespace rowlark::testing {

class Mirror {
 public:
  Mirror();
  Mirror(const Mirror&) = delete;
  Mirror& operator=(const Mirror&) = delete;

  // From now on, on a sheet of its own.
  void Connect(Session& session);

  uint64_t Searches() const { return searches_; }

 private:
  void Push(Session& session);
  void Pull(Session& session);

  CalcDocument document_;
  Ref<calc::Application> application_;
  int sheets_ = 1;
  bool filtered_ = false;
  std::u16string filter_;
  uint64_t searches_ = 0;
};

}  // namespace rowlark::testing

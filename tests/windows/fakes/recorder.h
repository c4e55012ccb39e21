// Recorder: what was asked of all fake objects, in order; and the failure of the n-th call, where a test
// wants one.
#pragma once

#include <map>

#include "core/text/text.h"

namespace quillfile::windows {

class Recorder {
 public:
  // Notes "Type.Member"; true when this call is the one to fail.
  bool called(const Text& type, const Text& member) {
    ++calls_[fill(u"{}.{}", type, member)];
    ++total_;
    return failAt_ != 0 && total_ == failAt_;
  }
  void failAt(int call) {
    failAt_ = call;
    total_ = 0;
  }
  void clear() {
    calls_.clear();
    total_ = 0;
  }
  int total() const { return total_; }
  int count(const Text& call) const {
    const auto found = calls_.find(call);
    return found == calls_.end() ? 0 : found->second;
  }
  const std::map<Text, int>& calls() const { return calls_; }

 private:
  std::map<Text, int> calls_;
  int total_ = 0;
  int failAt_ = 0;
};

}  // namespace quillfile::windows

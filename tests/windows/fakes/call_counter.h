// CallCounter: how often each member of each kind of automation object was called.
#pragma once

#include <map>

#include "core/text/text.h"

namespace quillfile::windows {

class CallCounter {
 public:
  void called(const Text& type, const Text& member) { ++calls_[fill(u"{}.{}", type, member)]; }
  void clear() { calls_.clear(); }
  // "Attachment.SaveAsFile" and how often, of the types that the client owns or of all.
  const std::map<Text, int>& calls() const { return calls_; }
  int total() const {
    int sum = 0;
    for (const auto& [call, times] : calls_) sum += times;
    return sum;
  }

 private:
  std::map<Text, int> calls_;
};

}  // namespace quillfile::windows

// Recorder: the one ordered list of what the fakes were asked to do, and the place where a call is made to
// fail. It holds no assertions.
#pragma once

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "core/platform/failure.h"
#include "core/text/text.h"

namespace quillfile {

class Recorder {
 public:
  // Every call that can fail begins here, under its port's name: "Item.save". Throws Failure when it is to
  // fail.
  void asked(TextView call) {
    if (refuses(call)) throw failureOf(call);
  }
  // The same for ports that report failure by their result: true when this call is to fail.
  bool refuses(TextView call) {
    const std::int32_t times = ++callsByName_[Text{call}];
    const bool fails = ++calls_ == failAt_ || (!failing_.empty() && failing_.contains(Text{call})) ||
                       (call == failOnceIn_ && times == failOnceAt_);
    if (fails) {
      failedCall_ = call;
      did(fill(u"{} fails", call));
    }
    return fails;
  }
  // An effect, or a line of the trace.
  void did(Text line) { lines_.push_back(std::move(line)); }

  // From now on: the n-th call fails (0: none does).
  void failAt(std::int32_t n) { calls_ = 0, failAt_ = n, failedCall_.clear(); }
  // From now on: every call of this name fails.
  void failOn(TextView call) { failOn(call, {5, fill(u"{} failed", call)}); }
  void failOn(TextView call, Failure failure) { failing_.insert_or_assign(Text{call}, std::move(failure)); }
  // From now on: the n-th call of this name fails, and no other.
  void failOnce(TextView call, std::int32_t n) {
    failOnceIn_ = call;
    failOnceAt_ = callsByName_[failOnceIn_] + n;
  }
  void failNoMore() { failAt(0), failing_.clear(); }

  const std::vector<Text>& lines() const { return lines_; }
  // Only the lines that begin with `beginning`: u"trace ", u"error ".
  std::vector<Text> lines(TextView beginning) const {
    std::vector<Text> found;
    for (const auto& line : lines_)
      if (startsWith(line, beginning)) found.push_back(line);
    return found;
  }
  void clear() { lines_.clear(); }
  // How often each call was made since the beginning, whether it failed or not.
  const std::map<Text, std::int32_t>& calls() const { return callsByName_; }
  const Text& failedCall() const { return failedCall_; }  // empty: none failed since failAt()

 private:
  Failure failureOf(TextView call) const {
    const auto found = failing_.find(Text{call});
    return found == failing_.end() ? Failure{5, fill(u"{} failed", call)} : found->second;
  }

  std::vector<Text> lines_;
  std::map<Text, Failure> failing_;
  std::int32_t calls_ = 0;
  std::int32_t failAt_ = 0;
  std::map<Text, std::int32_t> callsByName_;
  Text failOnceIn_;
  std::int32_t failOnceAt_ = 0;
  Text failedCall_;
};

}  // namespace quillfile

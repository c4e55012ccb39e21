// beside: work on a second thread, or on this one when its end is waited for.
#pragma once

#include <future>
#include <system_error>
#include <utility>

namespace quillfile::mailbox {

// Begins `work` on a thread of its own. Where it is not `worthIt`, or no thread is to be had, the work is
// done by whoever waits for its end. What it throws comes out of get().
template <class Work>
std::future<void> beside(bool worthIt, const Work& work) {
  try {
    if (worthIt) return std::async(std::launch::async, work);
  } catch (const std::system_error&) {  // the process may have no more threads
  }
  return std::async(std::launch::deferred, work);
}

}  // namespace quillfile::mailbox

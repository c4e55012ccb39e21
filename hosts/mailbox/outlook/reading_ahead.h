// ReadingAhead: opens the messages of a walk before their turn comes. While the module works on one message,
// a second thread opens the next ones, reads them into their parts and decodes their attachments. It only
// reads: whatever changes the disk is done in the order of the walk. What it could not open, or had no room
// for, is opened by the walk itself, which then also reports what is wrong with it. A walk goes from one end
// to the other: the module's goes backwards.
//
//   ReadingAhead ahead{items.size(), [&](std::size_t i) { return pathOf(items[i]); }};
//   for (std::size_t i = items.size(); i-- > 0;)
//     if (auto read = ahead.take(i); read.message) …    // null: not read ahead
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "hosts/mailbox/outlook/attachment_source.h"

namespace quillfile::mailbox {

// A message and what was decoded of it.
struct ReadMessage {
  std::shared_ptr<const Message> message;
  DecodedParts decoded;

  std::size_t bytes() const;  // that it holds
};

class ReadingAhead {
 public:
  // `pathOf` gives the path at which a message, by its index from 0, probably is; asked from within take().
  ReadingAhead(std::size_t count, std::function<std::string(std::size_t)> pathOf);
  ~ReadingAhead();
  ReadingAhead(const ReadingAhead&) = delete;
  ReadingAhead& operator=(const ReadingAhead&) = delete;

  // The message whose turn has come, as it was when it was read: its file may have been moved or changed
  // since (MessageFile::isStillAt). Null where it was not read. Those that stood in front of it in the walk
  // are given up; those behind it are read from now on.
  ReadMessage take(std::size_t index);

 private:
  struct Slot {
    enum class State { waiting, reading, read };
    std::size_t index = 0;
    std::string path;
    State state = State::waiting;
    ReadMessage content;  // without a message when that could not be read, or is too large to be kept
  };

  void expectBehind(std::size_t index);
  void work();
  std::shared_ptr<Slot> nextToRead() const;

  const std::size_t count_;
  const std::size_t mostSlots_;
  const std::function<std::string(std::size_t)> pathOf_;

  std::mutex mutex_;                         // guards all below
  std::condition_variable change_;           // of a slot's state, of the slots, of stop_
  std::deque<std::shared_ptr<Slot>> slots_;  // in the order of the walk
  std::size_t held_ = 0;                     // bytes in them
  std::size_t last_;                         // the index that was taken last
  bool backwards_ = false;
  bool stop_ = false;
  std::thread thread_;
};

}  // namespace quillfile::mailbox

#include "hosts/mailbox/outlook/reading_ahead.h"

#include <sys/resource.h>

#include <algorithm>
#include <system_error>
#include <utility>

#include "hosts/mailbox/outlook/container.h"

namespace quillfile::mailbox {
namespace {

constexpr std::size_t mostBytes = std::size_t{8}
                                  << 20;  // of messages that wait for their turn: no more are read
constexpr std::size_t largest = std::size_t{4} << 20;  // bytes of one that is kept

// Each message keeps a file open, and so does all that the walk itself is working on.
std::size_t fittingSlots() {
  constexpr rlim_t most = 32, share = 32;
  rlimit open{};
  return ::getrlimit(RLIMIT_NOFILE, &open) == 0 ? std::min(most, open.rlim_cur / share) : most;
}

// Nothing when it cannot be had, or is too large.
ReadMessage read(const std::string& path) {
  try {
    auto file = MessageFile::open(path);
    if (!file || file->bytes().size() > largest) return {};
    auto message = withContainersOpened(std::make_shared<const Message>(std::move(file)));
    auto decoded = decodedAttachments(*message);
    message->requireAsOpened();
    return {.message = std::move(message), .decoded = std::move(decoded)};
  } catch (...) {
    return {};  // whoever opens it in its turn meets the same, and says so
  }
}

}  // namespace

std::size_t ReadMessage::bytes() const {
  std::size_t bytes = message ? message->bytes().size() : 0;
  for (const auto& part : decoded) bytes += part.content.size;
  return bytes;
}

ReadingAhead::ReadingAhead(std::size_t count, std::function<std::string(std::size_t)> pathOf)
    : count_(count), mostSlots_(fittingSlots()), pathOf_(std::move(pathOf)), last_(count) {}

ReadingAhead::~ReadingAhead() {
  {
    const std::lock_guard lock{mutex_};
    stop_ = true;
  }
  change_.notify_all();
  if (thread_.joinable()) thread_.join();
}

ReadMessage ReadingAhead::take(std::size_t index) {
  std::unique_lock lock{mutex_};
  const std::size_t before = std::exchange(last_, index);
  if (before == index) return {};
  if (index == 0 && before != 1) backwards_ = false;
  if (index + 1 == count_ && before + 1 != index) backwards_ = true;
  std::shared_ptr<Slot> slot;
  while (!slots_.empty() && (!slot || slot->index != index)) {
    slot = std::move(slots_.front());
    slots_.pop_front();
    change_.wait(lock, [&] { return slot->state != Slot::State::reading; });
    held_ -= slot->content.bytes();
  }
  expectBehind(index);
  return slot && slot->index == index ? std::move(slot->content) : ReadMessage{};
}

// The other thread is woken for many messages at a time: when half of the slots or of the bytes are used up.
void ReadingAhead::expectBehind(std::size_t index) {
  if (slots_.size() <= mostSlots_ / 2) {
    if (!slots_.empty()) index = slots_.back()->index;
    const auto turn = [&] { return backwards_ ? --index : ++index; };  // what comes before 0 is no index
    while (slots_.size() < mostSlots_ && turn() < count_)
      slots_.push_back(std::make_shared<Slot>(Slot{.index = index, .path = pathOf_(index), .content = {}}));
  }
  if (stop_ || held_ > mostBytes / 2 || !nextToRead()) return;
  if (thread_.joinable()) return change_.notify_all();
  try {
    thread_ = std::thread{[this] { work(); }};
  } catch (const std::system_error&) {
    stop_ = true;  // without a second thread the walk opens every message itself
  }
}

// Null while there is nothing to read, or no room.
std::shared_ptr<ReadingAhead::Slot> ReadingAhead::nextToRead() const {
  if (held_ >= mostBytes) return nullptr;
  const auto next = std::find_if(slots_.begin(), slots_.end(),
                                 [](const auto& slot) { return slot->state == Slot::State::waiting; });
  return next == slots_.end() ? nullptr : *next;
}

void ReadingAhead::work() {
  std::unique_lock lock{mutex_};
  for (;;) {
    std::shared_ptr<Slot> slot;
    change_.wait(lock, [&] { return stop_ || (slot = nextToRead()); });
    if (stop_) return;
    slot->state = Slot::State::reading;
    lock.unlock();
    auto content = read(slot->path);
    lock.lock();
    slot->content = std::move(content);
    slot->state = Slot::State::read;
    held_ += slot->content.bytes();
    change_.notify_all();
  }
}

}  // namespace quillfile::mailbox

#include "hosts/mailbox/store/message_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {
namespace {

// Up to here reading is cheaper than mapping: no page faults, no change to the address space.
constexpr std::int64_t largestRead = 128 << 10;

std::int64_t nanoseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

std::size_t readUpTo(int file, char* to, std::size_t size, const std::string& path) {
  std::size_t done = 0;
  while (done < size) {
    const ssize_t count = ::pread(file, to + done, size - done, static_cast<off_t>(done));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw fromErrno(errno, "read the message", path);
    if (count == 0) break;
    done += static_cast<std::size_t>(count);
  }
  return done;
}

}  // namespace

std::shared_ptr<MessageFile> MessageFile::open(const std::string& path) {
  Descriptor file{::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK)};
  if (!file) {
    if (errno == ENOENT) return nullptr;
    throw fromErrno(errno, "open the message", path);
  }
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) throw fromErrno(errno, "look at the message", path);
  if (!S_ISREG(status.st_mode))
    throw failure("Could not open the message " + path + ": it is no regular file");

  std::shared_ptr<MessageFile> message{new MessageFile};
  message->file_ = std::move(file);
  message->modified_ = nanoseconds(status.st_mtim);
  message->inode_ = status.st_ino;
  message->device_ = status.st_dev;
  const auto size = static_cast<std::size_t>(status.st_size);
  if (status.st_size <= largestRead) {
    message->read_.reset(new char[size + 1]);
    message->bytes_ = {message->read_.get(),
                       readUpTo(message->descriptor(), message->read_.get(), size, path)};
    return message;
  }
  message->mapped_ = std::make_unique<const Mapping>(message->descriptor(), size, path);
  message->bytes_ = message->mapped_->bytes();
  return message;
}

void MessageFile::forget(std::string_view range) const {
  if (mapped_) mapped_->forget(range);
}

mime::Behind MessageFile::behind() const {
  return mime::behindOf(bytes_, [this](std::string_view range) { forget(range); });
}

bool MessageFile::isAsOpened() const {
  struct stat status {};
  return ::fstat(descriptor(), &status) == 0 && isThis(status);
}

bool MessageFile::isStillAt(const std::string& path) const {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0 && isThis(status);
}

bool MessageFile::isThis(const struct stat& status) const {
  return status.st_ino == inode_ && status.st_dev == device_ && status.st_size == size() &&
         nanoseconds(status.st_mtim) == modified_ && (!mapped_ || mapped_->isWhole());
}

// A message that has no name left was rewritten or deleted while this process waited to open it.
bool MessageFile::lock() {
  if (locked_) return true;
  if (::flock(descriptor(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return false;
  struct stat status {};
  return locked_ = ::fstat(descriptor(), &status) == 0 && status.st_nlink > 0;
}

}  // namespace quillfile::mailbox

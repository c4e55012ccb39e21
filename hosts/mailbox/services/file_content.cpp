#include "hosts/mailbox/services/file_content.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <utility>

#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {
namespace {

constexpr std::size_t bufferSize = 256 << 10;

// One buffer for all: the host writes and compares one file at a time on each thread.
char* buffer() {
  static thread_local const std::unique_ptr<char[]> bytes{new char[bufferSize]};
  return bytes.get();
}

std::size_t readAt(int file, char* to, std::size_t size, std::int64_t offset, const std::string& path) {
  std::size_t done = 0;
  while (done < size) {
    const ssize_t count =
        ::pread(file, to + done, size - done, static_cast<off_t>(offset) + static_cast<off_t>(done));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw fromErrno(errno, "read back", path);
    if (count == 0) break;
    done += static_cast<std::size_t>(count);
  }
  return done;
}

}  // namespace

// write() may take fewer bytes than it is given (a disk that is nearly full, a signal); what is left is tried
// again.
void writeAll(int file, std::string_view bytes, const std::string& path) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(file, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw fromErrno(errno, "write", path);
    if (count == 0) throw fromErrno(ENOSPC, "write", path);
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

// However the bytes come, the system is asked for the same writes: whole buffers, and the rest.
std::int64_t writeContent(int file, const Content& content, const std::string& path) {
  char* const gathered = buffer();
  std::size_t used = 0;
  std::int64_t size = 0;
  content([&](std::string_view bytes) {
    size += static_cast<std::int64_t>(bytes.size());
    while (!bytes.empty()) {
      const bool asIs = used == 0 && bytes.size() >= bufferSize;
      const auto part = bytes.substr(0, bufferSize - used);
      if (!asIs) std::memcpy(gathered + used, part.data(), part.size());
      used += part.size();
      if (used == bufferSize) writeAll(file, {asIs ? part.data() : gathered, std::exchange(used, 0)}, path);
      bytes.remove_prefix(part.size());
    }
  });
  writeAll(file, {gathered, used}, path);
  return size;
}

bool holdsContent(int file, const Content& content, const std::string& path) {
  char* const read = buffer();
  std::int64_t offset = 0;
  bool same = true;
  content([&](std::string_view bytes) {
    while (same && !bytes.empty()) {
      const std::size_t size = std::min(bytes.size(), bufferSize);
      same = readAt(file, read, size, offset, path) == size && std::memcmp(read, bytes.data(), size) == 0;
      offset += static_cast<std::int64_t>(size);
      bytes.remove_prefix(size);
    }
  });
  char beyond = 0;
  return same && readAt(file, &beyond, 1, offset, path) == 0;
}

}  // namespace quillfile::mailbox

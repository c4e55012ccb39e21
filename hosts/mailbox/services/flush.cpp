#include "hosts/mailbox/services/flush.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace quillfile::mailbox {
namespace {

// From here on one syncfs is cheaper than an fsync for each. Both were measured:
// docs/decisions/durability.md.
constexpr std::size_t many = 4;

// Some file systems cannot flush a folder by itself, and say so; their names need none.
int flushOne(int descriptor) {
  while (::fsync(descriptor) != 0) {
    if (errno == EINTR) continue;
    return errno == EINVAL ? 0 : errno;
  }
  return 0;
}

// A file system's error is told to one descriptor once, whichever file had it: so after a failure each is
// asked.
bool flushAll(int descriptor) { return ::syncfs(descriptor) == 0; }

}  // namespace

void Flush::add(int descriptor) {
  if (errors_.emplace(descriptor, EIO).second) wanted_.push_back(descriptor);
}

void Flush::run() {
  std::map<std::uint64_t, std::vector<int>> byFileSystem;
  for (const int descriptor : wanted_) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) {
      errors_[descriptor] = errno;
    } else {
      byFileSystem[status.st_dev].push_back(descriptor);
    }
  }
  for (const auto& [device, descriptors] : byFileSystem) {
    const bool together = descriptors.size() >= many && flushAll(descriptors.front());
    for (const int descriptor : descriptors) errors_[descriptor] = together ? 0 : flushOne(descriptor);
  }
}

int Flush::error(int descriptor) const {
  const auto found = errors_.find(descriptor);
  return found == errors_.end() ? EIO : found->second;
}

}  // namespace quillfile::mailbox

#include "hosts/mailbox/services/names.h"

#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

#include <cerrno>

#include "hosts/mailbox/services/descriptor.h"
#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {
namespace {

constexpr const char* openFiles = "/proc/self/fd/";

}  // namespace

int renameWithoutReplacing(const Place& from, const Place& to) {
  if (::renameat2(from.directory, from.name.c_str(), to.directory, to.name.c_str(), RENAME_NOREPLACE) == 0)
    return 0;
  const bool unknown = errno == EINVAL || errno == ENOSYS || errno == ENOTSUP;
  if (!unknown) return errno;
  if (::linkat(from.directory, from.name.c_str(), to.directory, to.name.c_str(), 0) != 0) return errno;
  return ::unlinkat(from.directory, from.name.c_str(), 0) == 0 || errno == ENOENT ? 0 : errno;
}

int linkNameless(int file, const Place& to) {
  const std::string from = openFiles + std::to_string(file);
  return ::linkat(AT_FDCWD, from.c_str(), to.directory, to.name.c_str(), AT_SYMLINK_FOLLOW) == 0 ? 0 : errno;
}

bool canLinkNameless() {
  static const bool can = ::access(openFiles, F_OK) == 0;
  return can;
}

void flushDirectory(const std::string& path) {
  const Descriptor directory{::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
  if (!directory) throw fromErrno(errno, "open", path);
  if (::fsync(directory.get()) != 0 && errno != EINVAL) throw fromErrno(errno, "flush", path);
}

}  // namespace quillfile::mailbox

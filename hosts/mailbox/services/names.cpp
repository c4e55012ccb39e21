#include "hosts/mailbox/services/names.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <stdio.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
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

bool keepsNameless(int folder) {
  static const bool canLink = ::access(openFiles, F_OK) == 0;
  struct statfs system {};
  if (!canLink || ::fstatfs(folder, &system) != 0) return false;
  constexpr std::array known{EXT4_SUPER_MAGIC, XFS_SUPER_MAGIC, TMPFS_MAGIC};
  return std::find(known.begin(), known.end(), system.f_type) != known.end();
}

void flushDirectory(const std::string& path) {
  const Descriptor directory{::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
  if (!directory) throw fromErrno(errno, "open", path);
  if (::fsync(directory.get()) != 0 && errno != EINVAL) throw fromErrno(errno, "flush", path);
}

}  // namespace quillfile::mailbox

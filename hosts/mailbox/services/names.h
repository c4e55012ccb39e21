// Changes to directories, each one system call, and safe against every race with other programs.
#pragma once

#include <string>

namespace quillfile::mailbox {

// A path, or a name within an open directory.
struct Place {
  int directory;  // a descriptor, or AT_FDCWD
  std::string name;
};

// Gives `from` the name `to` unless that is taken, in one step. 0, or the error: EEXIST when it is taken.
// renameat2 with RENAME_NOREPLACE; link and unlink where the file system has none.
int renameWithoutReplacing(const Place& from, const Place& to);

// Gives a file that was made without a name (O_TMPFILE) its first one, unless that is taken. 0, or the error:
// EEXIST when it is taken. linkat by way of /proc/self/fd.
int linkNameless(int file, const Place& to);
// Whether that can be done in the file system of an open folder, and a flush of such a file keeps its bytes
// when it is linked afterwards: so on ext2 to ext4, XFS and in memory. btrfs up to Linux 6.12 flushes nothing
// of a file without a name, and says that it did; what an overlay lies on is not to be seen.
bool keepsNameless(int folder);

// Flushes a directory's names. Throws Failure.
void flushDirectory(const std::string& path);

}  // namespace quillfile::mailbox

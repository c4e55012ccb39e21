#include "hosts/mailbox/services/file_system.h"

#include <sys/stat.h>

#include <cerrno>

#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {
namespace {

constexpr mode_t anyWrite = 0222;
constexpr std::int32_t readOnlyBit = 1;

bool regular(const std::string& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

struct stat statusOf(SavedFiles& files, const std::string& path, std::string_view what) {
  struct stat status {};
  const auto waiting = files.waiting(path);
  const int result = waiting ? ::fstat(waiting->file.get(), &status) : ::stat(path.c_str(), &status);
  if (result != 0) throw fromErrno(errno, what, path);
  return status;
}

}  // namespace

bool HostFileSystem::fileListed(TextView path) { return files_.listed(toUtf8(path)); }

bool HostFileSystem::folderExists(TextView path) { return files_.isFolder(toUtf8(path)); }

Text HostFileSystem::firstFreePath(TextView folder, TextView base, TextView extension) {
  return fromUtf8(files_.firstFreePath(toUtf8(folder), toUtf8(base), toUtf8(extension)));
}

void HostFileSystem::deleteFile(TextView path) { files_.remove(toUtf8(path)); }

std::int32_t HostFileSystem::attributes(TextView path) {
  const auto status = statusOf(files_, toUtf8(path), "read the attributes of");
  return (status.st_mode & anyWrite) == 0 ? readOnlyBit : 0;
}

// Made writable, a file may be written by its owner.
void HostFileSystem::setAttributes(TextView text, std::int32_t attributes) {
  const std::string path = toUtf8(text);
  const auto status = statusOf(files_, path, "change the attributes of");
  const bool readOnly = (attributes & readOnlyBit) != 0;
  if (readOnly == ((status.st_mode & anyWrite) == 0)) return;
  const mode_t mode = (status.st_mode & 07777 & ~anyWrite) | (readOnly ? 0 : S_IWUSR);
  const auto waiting = files_.waiting(path);
  const int result = waiting ? ::fchmod(waiting->file.get(), mode) : ::chmod(path.c_str(), mode);
  if (result != 0) throw fromErrno(errno, "change the attributes of", path);
}

bool HostLinkedFiles::exists(const Ref<SafeItem>&, TextView text) {
  const std::string path = toUtf8(text);
  return files_.waiting(path) != nullptr || (files_.listed(path) && regular(path));
}

}  // namespace quillfile::mailbox

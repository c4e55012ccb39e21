#include "hosts/windows/services/files.h"

#include "hosts/windows/com/failure.h"
#include "hosts/windows/com/wide.h"
#include "hosts/windows/services/disk_path.h"

namespace quillfile::windows {

namespace {

DWORD attributesOf(TextView path) { return GetFileAttributesW(wide(diskPath(path))); }

void require(BOOL done) {
  if (!done) raiseSystem(GetLastError());
}

}  // namespace

bool DiskFiles::fileListed(TextView path) {
  constexpr DWORD unlisted =
      FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE;
  const DWORD found = attributesOf(path);
  return found != INVALID_FILE_ATTRIBUTES && (found & unlisted) == 0;
}

bool DiskFiles::folderExists(TextView path) {
  const DWORD found = attributesOf(path);
  return found != INVALID_FILE_ATTRIBUTES && (found & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

Text DiskFiles::firstFreePath(TextView folder, TextView base, TextView extension) {
  const Text stem = fill(endsWith(folder, u"\\") ? u"{}{}" : u"{}\\{}", folder, base);
  Text path = fill(u"{}{}", stem, extension);
  for (std::int32_t number = 1; fileListed(path); ++number) path = fill(u"{}-{}{}", stem, number, extension);
  return path;
}

void DiskFiles::deleteFile(TextView path) { require(DeleteFileW(wide(diskPath(path)))); }

std::int32_t DiskFiles::attributes(TextView path) {
  const DWORD found = attributesOf(path);
  require(found != INVALID_FILE_ATTRIBUTES);
  return static_cast<std::int32_t>(found);
}

void DiskFiles::setAttributes(TextView path, std::int32_t attributes) {
  require(SetFileAttributesW(wide(diskPath(path)), static_cast<DWORD>(attributes)));
}

bool DiskLinkedFiles::exists(const Ref<SafeItem>&, TextView path) {
  return isPlainFullPath(path) && files_.fileListed(path);
}

}  // namespace quillfile::windows

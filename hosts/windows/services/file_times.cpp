#include "hosts/windows/services/file_times.h"

#include <bit>
#include <string>

#include "hosts/windows/com/wide.h"
#include "hosts/windows/services/disk_path.h"

namespace quillfile::windows {

namespace {

FILETIME split(FileTimes::FileTime time) { return std::bit_cast<FILETIME>(time); }
FileTimes::FileTime join(FILETIME time) { return std::bit_cast<FileTimes::FileTime>(time); }

// No descriptor, not inherited; the record's length is the 32-bit one in both builds, the system does not
// read it.
constexpr SECURITY_ATTRIBUTES notInherited{
    .nLength = 12, .lpSecurityDescriptor = nullptr, .bInheritHandle = FALSE};

// The text in the user's code page; none when that cannot hold it.
std::optional<std::string> inCodePage(TextView text) {
  const Text whole{text};
  std::string bytes(whole.size() * 4 + 1, '\0');
  BOOL replaced = FALSE;
  const int length = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide(whole), -1, bytes.data(),
                                         static_cast<int>(bytes.size()), nullptr, &replaced);
  if (length == 0 || replaced) return std::nullopt;
  bytes.resize(static_cast<std::size_t>(length - 1));
  return bytes;
}

}  // namespace

template <class Result>
Result DiskFileTimes::failed(Result result) {
  lastError_ = GetLastError();
  return result;
}

std::optional<FileTimes::FileTime> DiskFileTimes::systemTimeToFileTime(const SystemTime& time) {
  const auto parts = std::bit_cast<SYSTEMTIME>(time);
  FILETIME result;
  if (!SystemTimeToFileTime(&parts, &result)) return failed(std::optional<FileTime>{});
  return join(result);
}

std::optional<FileTimes::FileTime> DiskFileTimes::localFileTimeToFileTime(FileTime local) {
  const FILETIME from = split(local);
  FILETIME result;
  if (!LocalFileTimeToFileTime(&from, &result)) return failed(std::optional<FileTime>{});
  return join(result);
}

FileTimes::Handle DiskFileTimes::onDisk(HANDLE handle) {
  if (handle == INVALID_HANDLE_VALUE) return failed(invalid);
  if (GetFileType(handle) == FILE_TYPE_DISK) return reinterpret_cast<Handle>(handle);
  CloseHandle(handle);
  lastError_ = ERROR_FILE_NOT_FOUND;
  return invalid;
}

FileTimes::Handle DiskFileTimes::openToChange(TextView path) {
  auto security = notInherited;
  return onDisk(calls_.createFileW(wide(Text{path}), GENERIC_READ | GENERIC_WRITE,
                                   FILE_SHARE_READ | FILE_SHARE_WRITE, &security, OPEN_EXISTING,
                                   FILE_ATTRIBUTE_NORMAL, nullptr));
}

FileTimes::Handle DiskFileTimes::openAlone(TextView path) {
  auto security = notInherited;
  if (path.size() < MAX_PATH) {
    if (const auto bytes = inCodePage(path)) {
      return onDisk(calls_.createFileA(bytes->c_str(), GENERIC_READ, 0, &security, OPEN_EXISTING,
                                       FILE_ATTRIBUTE_NORMAL, nullptr));
    }
  }
  return onDisk(calls_.createFileW(wide(diskPath(path)), GENERIC_READ, 0, &security, OPEN_EXISTING,
                                   FILE_ATTRIBUTE_NORMAL, nullptr));
}

bool DiskFileTimes::setTimes(Handle handle, FileTime creation, FileTime lastAccess, FileTime lastWrite) {
  const FILETIME created = split(creation), accessed = split(lastAccess), written = split(lastWrite);
  return calls_.setFileTime(reinterpret_cast<HANDLE>(handle), &created, &accessed, &written) || failed(false);
}

void DiskFileTimes::close(Handle handle) {
  if (handle != invalid && !CloseHandle(reinterpret_cast<HANDLE>(handle))) failed(false);
}

}  // namespace quillfile::windows

// DiskFileTimes: SystemTimeToFileTime, LocalFileTimeToFileTime, CreateFileW, CreateFileA, SetFileTime and
// CloseHandle.
#pragma once

#include <windows.h>

#include "core/platform/system.h"

namespace quillfile::windows {

// The system's calls, so that a test can see their arguments: not every file system keeps what it is told.
struct FileCalls {
  decltype(&::CreateFileW) createFileW = ::CreateFileW;
  decltype(&::CreateFileA) createFileA = ::CreateFileA;
  decltype(&::SetFileTime) setFileTime = ::SetFileTime;
};

class DiskFileTimes final : public FileTimes {
 public:
  explicit DiskFileTimes(FileCalls calls = {}) : calls_(calls) {}

  std::optional<FileTime> systemTimeToFileTime(const SystemTime& time) override;
  std::optional<FileTime> localFileTimeToFileTime(FileTime local) override;
  Handle openToChange(TextView path) override;
  // The file that CreateFileA opens for the path's form in the user's code page. A path that has no such form
  // is opened by CreateFileW with the same arguments: the file could not be waited for otherwise.
  Handle openAlone(TextView path) override;
  bool setTimes(Handle handle, FileTime creation, FileTime lastAccess, FileTime lastWrite) override;
  void close(Handle handle) override;
  std::int32_t lastError() override { return static_cast<std::int32_t>(lastError_); }

 private:
  // `handle` when it is a file on a disk. A device ("nul", "con") opens too, but is no file that was saved.
  Handle onDisk(HANDLE handle);
  template <class Result>
  Result failed(Result result);

  FileCalls calls_;
  DWORD lastError_ = ERROR_SUCCESS;
};

}  // namespace quillfile::windows

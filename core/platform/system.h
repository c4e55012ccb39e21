// The operating system, as far as the module uses it itself. Calls report failure by their result and
// lastError(), as the system's own do, or throw Failure where that is said.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "core/platform/date_time.h"
#include "core/platform/item.h"
#include "core/text/text.h"

namespace quillfile {

// Files by path: the module's own tests and changes.
class FileSystem {
 public:
  virtual ~FileSystem() = default;
  // True when a listing of `path` for normal files yields a name: an existing file, not hidden, no directory.
  virtual bool fileListed(TextView path) = 0;
  virtual bool folderExists(TextView path) = 0;
  // `base` + `extension` in `folder` when that is free, else with "-1", "-2" … before the extension: the
  // first that fileListed() does not find. The host may remember the folder's listing; the answer is the
  // same.
  virtual Text firstFreePath(TextView folder, TextView base, TextView extension) = 0;
  virtual void deleteFile(TextView path) = 0;                              // throws Failure
  virtual std::int32_t attributes(TextView path) = 0;                      // bit 1: read-only; throws Failure
  virtual void setAttributes(TextView path, std::int32_t attributes) = 0;  // throws Failure
};

// Whether the file that a link names is there. One port of its own, because a host may be stricter than
// FileSystem::fileListed: the link's text comes out of a mail.
class LinkedFiles {
 public:
  virtual ~LinkedFiles() = default;
  virtual bool exists(const Ref<SafeItem>& item, TextView path) = 0;
};

// Opening files and setting their times (CreateFileW, CreateFileA, SetFileTime and their like).
class FileTimes {
 public:
  using Handle = std::intptr_t;
  static constexpr Handle invalid = -1;
  using FileTime = std::uint64_t;  // 100-nanosecond intervals since 1601-01-01
  // year, month, day of week, day, hour, minute, second, milliseconds
  using SystemTime = std::array<std::uint16_t, 8>;

  virtual ~FileTimes() = default;
  virtual std::optional<FileTime> systemTimeToFileTime(const SystemTime& time) = 0;
  virtual std::optional<FileTime> localFileTimeToFileTime(FileTime local) = 0;
  // For reading and writing, shared; an existing file only. `invalid` when it cannot be opened.
  virtual Handle openToChange(TextView path) = 0;
  // For reading, shared with nobody; an existing file only. `invalid` when it cannot be opened.
  virtual Handle openAlone(TextView path) = 0;
  virtual bool setTimes(Handle handle, FileTime creation, FileTime lastAccess, FileTime lastWrite) = 0;
  virtual void close(Handle handle) = 0;
  virtual std::int32_t lastError() = 0;  // of the last call above that failed, in the system's numbers
};

class Clock {
 public:
  virtual ~Clock() = default;
  virtual std::int64_t seconds() = 0;  // whole seconds of the clock on the wall, from any start
};

class Programs {
 public:
  virtual ~Programs() = default;
  // Starts a program from a command line, with a normal, focused window; does not wait. Throws Failure.
  // `path` is the saved file's path as it stands in the command line, so that a host can keep it one
  // argument.
  virtual void start(TextView commandLine, TextView path) = 0;
  virtual Text machineName() = 0;
};

}  // namespace quillfile

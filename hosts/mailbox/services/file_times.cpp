#include "hosts/mailbox/services/file_times.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>

#include <cerrno>

namespace quillfile::mailbox {
namespace {

constexpr std::int64_t unitsPerSecond = 10'000'000;       // of 100 ns
constexpr std::int64_t epochDifference = 11'644'473'600;  // seconds from 1601 to 1970

timespec toTimespec(FileTimes::FileTime time) {
  const auto units = static_cast<std::int64_t>(time) - epochDifference * unitsPerSecond;
  const std::int64_t part = ((units % unitsPerSecond) + unitsPerSecond) % unitsPerSecond;
  return {.tv_sec = static_cast<time_t>((units - part) / unitsPerSecond),
          .tv_nsec = static_cast<long>(part * 100)};
}

bool readOnly(int file) {
  struct stat status {};
  return ::fstat(file, &status) == 0 && (status.st_mode & 0222) == 0;
}

}  // namespace

// The day of the week is not looked at, as SystemTimeToFileTime does not.
std::optional<FileTimes::FileTime> HostFileTimes::systemTimeToFileTime(const SystemTime& time) {
  tm fields{};
  fields.tm_year = time[0] - 1900;
  fields.tm_mon = time[1] - 1;
  fields.tm_mday = time[3];
  fields.tm_hour = time[4];
  fields.tm_min = time[5];
  fields.tm_sec = time[6];
  const tm asked = fields;
  const time_t seconds = ::timegm(&fields);
  const bool real = fields.tm_mon == asked.tm_mon && fields.tm_mday == asked.tm_mday &&
                    fields.tm_hour == asked.tm_hour && fields.tm_min == asked.tm_min &&
                    fields.tm_sec == asked.tm_sec && time[0] >= 1601 && time[0] <= 30827 && time[7] < 1000;
  if (!real) {
    lastError_ = EINVAL;
    return std::nullopt;
  }
  return static_cast<FileTime>((seconds + epochDifference) * unitsPerSecond + time[7] * 10'000);
}

// With the bias of now, not of the time that is converted, as LocalFileTimeToFileTime does it.
std::optional<FileTimes::FileTime> HostFileTimes::localFileTimeToFileTime(FileTime local) {
  const time_t now = ::time(nullptr);
  tm fields{};
  if (::localtime_r(&now, &fields) == nullptr) {
    lastError_ = errno;
    return std::nullopt;
  }
  return static_cast<FileTime>(static_cast<std::int64_t>(local) - fields.tm_gmtoff * unitsPerSecond);
}

FileTimes::Handle HostFileTimes::open(TextView text, int flags) {
  const std::string path = toUtf8(text);
  Open opened{.waiting = files_.waiting(path), .file = {}};
  if (!opened.waiting) {
    opened.file = Descriptor{::open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK)};
    if (!opened.file) {
      lastError_ = errno;
      return invalid;
    }
  }
  const int file = opened.waiting ? opened.waiting->file.get() : opened.file.get();
  if (flags == O_RDWR && readOnly(file)) {
    lastError_ = EACCES;
    return invalid;
  }
  open_.emplace(next_, std::move(opened));
  return next_++;
}

FileTimes::Handle HostFileTimes::openToChange(TextView path) { return open(path, O_RDWR); }

// Linux has no opening that shuts others out; that the file can be opened at all is what is asked for.
FileTimes::Handle HostFileTimes::openAlone(TextView path) { return open(path, O_RDONLY); }

bool HostFileTimes::setTimes(Handle handle, FileTime, FileTime lastAccess, FileTime lastWrite) {
  const auto found = open_.find(handle);
  if (found == open_.end()) {
    lastError_ = EBADF;
    return false;
  }
  const Open& opened = found->second;
  const timespec times[2] = {toTimespec(lastAccess), toTimespec(lastWrite)};
  if (::futimens(opened.waiting ? opened.waiting->file.get() : opened.file.get(), times) == 0) return true;
  lastError_ = errno;
  return false;
}

void HostFileTimes::close(Handle handle) { open_.erase(handle); }

}  // namespace quillfile::mailbox

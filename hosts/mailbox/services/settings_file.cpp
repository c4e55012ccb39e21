#include "hosts/mailbox/services/settings_file.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "hosts/mailbox/services/descriptor.h"
#include "hosts/mailbox/services/failure.h"
#include "hosts/mailbox/services/file_content.h"
#include "hosts/mailbox/services/ini_text.h"
#include "hosts/mailbox/services/names.h"

namespace quillfile::mailbox {
namespace {

constexpr std::int64_t largest = 1 << 20;         // bytes of a settings file
constexpr std::int64_t coarsest = 20'000'000;     // ns: times on disk may be no finer than this
constexpr std::string_view newSuffix = ".new";    // the next version, until it takes the file's name
constexpr std::string_view lockSuffix = ".lock";  // held by the writer; stays, empty

std::int64_t nanoseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

char16_t lower(char16_t c) { return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c; }

bool sameLetters(TextView a, TextView b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char16_t x, char16_t y) { return lower(x) == lower(y); });
}

std::int64_t coarseTicks() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
  return nanoseconds(now);
}

// A link to the settings (as people who keep theirs in a repository have) stays one: what it leads to is
// written.
std::string realPath(const std::string& path) {
  std::error_code error;
  const auto real = std::filesystem::canonical(path, error);
  return error ? path : real.string();
}

std::string folderOf(const std::string& path) {
  const auto slash = path.rfind('/');
  return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

// The file's bytes; none when it is not there.
std::optional<std::string> readFile(const std::string& path) {
  const Descriptor file{::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK)};
  if (!file && errno == ENOENT) return std::nullopt;
  struct stat status {};
  if (!file || ::fstat(file.get(), &status) != 0) throw fromErrno(errno, "read the settings file", path);
  if (!S_ISREG(status.st_mode)) throw failure("The settings file " + path + " is no regular file");
  if (status.st_size > largest) throw failure("The settings file " + path + " is larger than 1 MB");
  std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t count = ::read(file.get(), bytes.data() + done, bytes.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw fromErrno(errno, "read the settings file", path);
    if (count == 0) break;
    done += static_cast<std::size_t>(count);
  }
  bytes.resize(done);
  return bytes;
}

// Written beside the file, flushed, and put in its place in one step.
void replaceFile(const std::string& path, const std::string& bytes) {
  const std::string next = path + std::string{newSuffix};
  ::unlink(next.c_str());  // of a writer that was stopped; no other one is at work while the lock is held
  const Descriptor file{::open(next.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600)};
  if (!file) throw fromErrno(errno, "write the settings file", next);
  try {
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0) ::fchmod(file.get(), status.st_mode & 0777);
    writeContent(
        file.get(), [&](const Sink& sink) { sink(bytes); }, next);
    if (::fsync(file.get()) != 0) throw fromErrno(errno, "flush the settings file", next);
    if (::rename(next.c_str(), path.c_str()) != 0) throw fromErrno(errno, "write the settings file", path);
  } catch (...) {
    ::unlink(next.c_str());
    throw;
  }
  flushDirectory(folderOf(path));
}

}  // namespace

// FNV-1a, 64 bits.
std::size_t SettingsFile::HashName::operator()(const Name& name) const {
  std::uint64_t hash = 0xCBF29CE484222325;
  for (const TextView text : {name.section, TextView(u"\n"), name.key})
    for (const char16_t c : text) hash = (hash ^ lower(c)) * 0x100000001B3;
  return hash;
}

bool SettingsFile::SameName::operator()(const Name& a, const Name& b) const {
  return sameLetters(a.section, b.section) && sameLetters(a.key, b.key);
}

SettingsFile::SettingsFile(std::string path, Ticks ticks)
    : path_(std::move(path)), ticks_(ticks ? std::move(ticks) : coarseTicks) {}

SettingsFile::Stamp SettingsFile::stampNow() const {
  struct stat status {};
  if (::stat(path_.c_str(), &status) != 0) {
    if (errno != ENOENT) throw fromErrno(errno, "look at the settings file", path_);
    return {};
  }
  return {.device = status.st_dev,
          .inode = status.st_ino,
          .size = status.st_size,
          .modified = nanoseconds(status.st_mtim),
          .changed = nanoseconds(status.st_ctim)};
}

// The stamp is taken before the bytes: a change in between is seen at the next look. A look that fails counts
// as none.
void SettingsFile::load() {
  const std::int64_t tick = ticks_();
  if (looked_ == tick) return;
  looked_.reset();
  const Stamp stamp = stampNow();
  if (!settled_ || stamp != stamp_) readValues(stamp);
  looked_ = tick;
}

void SettingsFile::readValues(const Stamp& stamp) {
  settled_ = false;
  values_.clear();
  settings_.clear();
  for (const auto& [section, key, value] : IniText{readFile(path_).value_or("")}.values(path_)) {
    settings_.push_back({.section = fromUtf8(section), .key = fromUtf8(key), .value = fromUtf8(value)});
    const Setting& setting = settings_.back();
    values_.insert_or_assign({setting.section, setting.key}, &setting.value);
  }
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  stamp_ = stamp;
  settled_ = nanoseconds(now) - stamp.changed > coarsest || nanoseconds(now) < stamp.changed;
}

std::optional<Text> SettingsFile::read(TextView, TextView section, TextView key) {
  load();
  const auto found = values_.find({section, key});
  return found == values_.end() ? std::nullopt : std::optional{*found->second};
}

void SettingsFile::write(TextView, TextView section, TextView key, TextView value) {
  change(section, key, Text{value});
}

void SettingsFile::erase(TextView section, TextView key) { change(section, key, std::nullopt); }

void SettingsFile::change(TextView section, TextView key, const std::optional<Text>& value) {
  lookAgain();
  const std::string path = realPath(path_);
  std::error_code error;
  std::filesystem::create_directories(folderOf(path), error);
  if (error) throw fromErrno(error.value(), "create the folder of the settings file", path);
  const std::string lockPath = path + std::string{lockSuffix};
  const Descriptor lock{::open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600)};
  if (!lock) throw fromErrno(errno, "lock the settings file", lockPath);
  while (::flock(lock.get(), LOCK_EX) != 0 && errno == EINTR) {
  }
  const std::string before = readFile(path).value_or("");
  IniText ini{before};
  ini.values(path);  // a file that cannot be read whole is not written to
  ini.set(toUtf8(section), toUtf8(key), value ? std::optional{toUtf8(*value)} : std::nullopt);
  const std::string after = ini.bytes();
  if (after != before) replaceFile(path, after);
}

}  // namespace quillfile::mailbox

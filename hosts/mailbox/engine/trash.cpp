#include "hosts/mailbox/engine/trash.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <filesystem>

#include "hosts/mailbox/engine/known_folders.h"
#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {
namespace {

constexpr auto purpose = "move to the trash";

std::string percentEncoded(const std::string& path) {
  constexpr char digits[] = "0123456789ABCDEF";
  std::string text;
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    const bool plain = std::isalnum(byte) || std::string_view("-._~/").find(c) != std::string_view::npos;
    if (plain) {
      text += c;
    } else {
      text.append({'%', digits[byte >> 4], digits[byte & 15]});
    }
  }
  return text;
}

dev_t deviceOf(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 ? status.st_dev : 0;
}

// The trash of the file system that `path` lies on.
std::string trashFor(const std::string& path) {
  std::string home = dataFolder() + "/Trash";
  std::error_code error;
  std::filesystem::create_directories(home, error);
  const dev_t device = deviceOf(path);
  if (deviceOf(home) == device) return home;
  std::filesystem::path top = path;
  while (top.parent_path() != top && deviceOf(top.parent_path()) == device) top = top.parent_path();
  return (top / (".Trash-" + std::to_string(getuid()))).string();
}

std::string infoText(const std::string& original) {
  char date[32];
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  std::strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S", localtime_r(&now, &local));
  return "[Trash Info]\nPath=" + percentEncoded(original) + "\nDeletionDate=" + date + "\n";
}

// Creates the info file that reserves a name in the trash; false when the name is taken.
bool reserve(const std::string& infoPath, const std::string& original) {
  const int descriptor = open(infoPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (descriptor < 0 && errno == EEXIST) return false;
  if (descriptor < 0) throw fromErrno(errno, purpose, original);
  const std::string info = infoText(original);
  const bool written = write(descriptor, info.data(), info.size()) == static_cast<ssize_t>(info.size());
  const int reason = errno;
  close(descriptor);
  if (written) return true;
  unlink(infoPath.c_str());
  throw fromErrno(reason, purpose, original);
}

}  // namespace

void moveToTrash(const std::string& path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0) throw fromErrno(errno, purpose, path);
  const std::string trash = trashFor(path);
  std::error_code error;
  for (const char* part : {"/files", "/info"}) {
    std::filesystem::create_directories(trash + part, error);
    if (error) throw fromErrno(error.value(), purpose, path);
  }
  const auto name = std::filesystem::path(path).filename();
  for (int number = 0;; ++number) {
    const std::string mark = number == 0 ? "" : "." + std::to_string(number);
    const std::string tried = name.stem().string() + mark + name.extension().string();
    const std::string info = trash + "/info/" + tried + ".trashinfo";
    if (!reserve(info, path)) continue;
    const std::string target = trash + "/files/" + tried;
    if (renameat2(AT_FDCWD, path.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) return;
    const int reason = errno;
    unlink(info.c_str());
    if (reason != EEXIST) throw fromErrno(reason, purpose, path);
  }
}

}  // namespace quillfile::mailbox

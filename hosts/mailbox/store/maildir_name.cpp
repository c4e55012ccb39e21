#include "hosts/mailbox/store/maildir_name.h"

#include <sys/random.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cstdio>

namespace quillfile::mailbox {
namespace {

// The host's name as it may stand in a file name: "/" and ":" written in octal, as the format asks for.
std::string hostName() {
  char name[256] = {};
  if (::gethostname(name, sizeof name - 1) != 0 || name[0] == 0) return "localhost";
  std::string clean;
  for (const char* at = name; *at != 0; ++at) {
    if (*at == '/') {
      clean += "\\057";
    } else if (*at == ':') {
      clean += "\\072";
    } else {
      clean += *at > ' ' && *at < 127 && *at != ',' ? *at : '_';
    }
  }
  return clean;
}

std::uint32_t randomNumber() {
  std::uint32_t number = 0;
  if (::getrandom(&number, sizeof number, 0) != sizeof number)
    number = static_cast<std::uint32_t>(::getpid());
  return number;
}

}  // namespace

MaildirName parseMaildirName(std::string_view fileName) {
  const auto mark = fileName.rfind(":2,");
  if (mark == std::string_view::npos) return {fileName, {}};
  return {fileName.substr(0, mark), fileName.substr(mark + 3)};
}

std::string maildirFileName(std::string_view unique, std::string_view flags) {
  return std::string{unique}.append(":2,").append(changedFlags(flags, {}, {}));
}

bool hasFlag(std::string_view flags, char flag) { return flags.find(flag) != std::string_view::npos; }

std::string changedFlags(std::string_view flags, std::string_view set, std::string_view clear) {
  std::string result{flags};
  result += set;
  std::erase_if(result, [&](char flag) { return hasFlag(clear, flag); });
  std::sort(result.begin(), result.end());
  result.erase(std::unique(result.begin(), result.end()), result.end());
  return result;
}

std::int64_t deliveryTime(std::string_view unique) {
  std::int64_t seconds = 0;
  std::from_chars(unique.data(), unique.data() + unique.size(), seconds);
  return seconds < 0 ? 0 : seconds;
}

namespace {

std::string freshName(std::string_view mark) {
  static const std::string host = hostName();
  static const std::uint32_t random = randomNumber();
  static std::atomic<std::uint32_t> counter{0};
  timeval now{};
  ::gettimeofday(&now, nullptr);
  char text[128];
  std::snprintf(text, sizeof text, "%lld.M%06ldP%dQ%uR%08x", static_cast<long long>(now.tv_sec),
                static_cast<long>(now.tv_usec), static_cast<int>(::getpid()), ++counter, random);
  return std::string{text}.append(mark) + "." + host;
}

// "F" and a hash of the folder's path: FNV-1a, 32 bits.
std::string folderMark(std::string_view folder) {
  std::uint32_t hash = 0x811C9DC5;
  for (const char c : folder) hash = (hash ^ static_cast<unsigned char>(c)) * 0x01000193;
  char text[16];
  std::snprintf(text, sizeof text, "F%08x", hash);
  return text;
}

}  // namespace

std::string freshUniqueName() { return freshName({}); }

std::string ownUniqueName(std::string_view folder) { return freshName(folderMark(folder)); }

bool isOwnIn(std::string_view folder, std::string_view unique) {
  const auto first = unique.find('.');
  if (first == std::string_view::npos) return false;
  const auto middle = unique.substr(first + 1, unique.find('.', first + 1) - first - 1);
  return middle.starts_with('M') && middle.find('Q') != std::string_view::npos &&
         middle.ends_with(folderMark(folder));
}

}  // namespace quillfile::mailbox

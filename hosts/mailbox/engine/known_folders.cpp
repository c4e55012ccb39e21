#include "hosts/mailbox/engine/known_folders.h"

#include <pwd.h>
#include <unistd.h>

#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace quillfile::mailbox {
namespace {

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

std::string withoutEndSeparator(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

std::string folder(const char* variable, const std::string& otherwise) {
  const std::string value = environment(variable);
  return withoutEndSeparator(value.starts_with('/') ? value : homeFolder() + otherwise);
}

// The value of XDG_DOCUMENTS_DIR in user-dirs.dirs: a line NAME="$HOME/…" or NAME="/…".
std::string fromUserDirs() {
  std::ifstream file(configFolder() + "/user-dirs.dirs");
  const std::string name = "XDG_DOCUMENTS_DIR=\"";
  for (std::string line; std::getline(file, line);) {
    const auto start = line.find_first_not_of(" \t");
    if (start == std::string::npos || line.compare(start, name.size(), name) != 0) continue;
    const auto from = start + name.size();
    std::string value = line.substr(from, line.find('"', from) - from);
    if (value.starts_with("$HOME/")) return homeFolder() + value.substr(5);
    if (value.starts_with('/')) return value;
  }
  return "";
}

bool isNameCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

// A reference to an environment variable at the front of `text`: how long it is and what it stands for.
struct Reference {
  std::size_t length = 0;  // 0: there is none
  std::string value;
};
Reference referenceAt(std::string_view text) {
  const bool braced = text.starts_with("${");
  const std::size_t begin = braced ? 2 : 1;
  std::size_t end = begin;
  while (end < text.size() && isNameCharacter(text[end])) ++end;
  if (!text.starts_with('$') || end == begin) return {};
  if (braced && (end == text.size() || text[end] != '}')) return {};
  const char* value = std::getenv(std::string(text.substr(begin, end - begin)).c_str());
  return value ? Reference{end + (braced ? 1 : 0), value} : Reference{};
}

}  // namespace

std::string homeFolder() {
  const std::string home = environment("HOME");
  if (home.starts_with('/')) return withoutEndSeparator(home);
  const passwd* user = getpwuid(getuid());
  return user && user->pw_dir ? user->pw_dir : "/";
}

std::string configFolder() { return folder("XDG_CONFIG_HOME", "/.config"); }
std::string stateFolder() { return folder("XDG_STATE_HOME", "/.local/state"); }
std::string dataFolder() { return folder("XDG_DATA_HOME", "/.local/share"); }

std::string documentsFolder() {
  const std::string set = environment("XDG_DOCUMENTS_DIR");
  if (set.starts_with('/')) return withoutEndSeparator(set);
  const std::string chosen = fromUserDirs();
  return chosen.empty() ? homeFolder() + "/Documents" : withoutEndSeparator(chosen);
}

std::string expandPath(const std::string& path) {
  std::string_view rest = path;
  std::string result;
  if (rest == "~" || rest.starts_with("~/")) {
    result = homeFolder();
    rest.remove_prefix(1);
  }
  while (!rest.empty()) {
    const auto [length, value] = referenceAt(rest);
    result += length > 0 ? value : std::string(1, rest.front());
    rest.remove_prefix(length > 0 ? length : 1);
  }
  if (result.starts_with('/')) return result;
  std::error_code error;
  return (std::filesystem::current_path(error) / result).string();
}

}  // namespace quillfile::mailbox

// A folder for one test, gone with it; and the few file operations that tests need.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

namespace quillfile::mailbox {

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = parent() + "/quillfile-test-XXXXXX";
    path_ = ::mkdtemp(pattern.data());
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& path() const { return path_; }
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }

 private:
  // In memory where that can be: a test that flushes then waits for no disk. TMPDIR decides otherwise.
  static std::string parent() {
    const char* const chosen = ::getenv("TMPDIR");
    if (chosen != nullptr) return chosen;
    return std::filesystem::is_directory("/dev/shm") ? "/dev/shm" : "/tmp";
  }

  std::string path_;
};

inline void writeFile(const std::string& path, const std::string& bytes) {
  std::ofstream{path, std::ios::binary} << bytes;
}

inline std::string readFile(const std::string& path) {
  std::ifstream file{path, std::ios::binary};
  return {std::istreambuf_iterator<char>{file}, {}};
}

inline std::set<std::string> namesIn(const std::string& folder) {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator{folder})
    names.insert(entry.path().filename().string());
  return names;
}

inline void makeMaildir(const std::string& path) {
  for (const char* part : {"/cur", "/new", "/tmp"}) std::filesystem::create_directories(path + part);
}

}  // namespace quillfile::mailbox

// Where the mail for tests is, and a file's bytes.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace quillfile::formats {

// The folder of that name in a "shared/corpus" beside the project, or beside a folder above it; empty when
// there is none.
inline std::filesystem::path corpusFolder(const std::string& name) {
  for (std::filesystem::path at = std::filesystem::path(TEST_DATA); at.has_relative_path();
       at = at.parent_path()) {
    const std::filesystem::path found = at.parent_path() / "shared" / "corpus" / name;
    if (std::filesystem::is_directory(found)) return found;
  }
  return {};
}

inline std::string contentsOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace quillfile::formats

// A folder of a test's own, emptied at the end.
#pragma once

#include <windows.h>

#include <string_view>

#include "hosts/windows/com/wide.h"

namespace quillfile::windows {

class TemporaryFolder {
 public:
  // Of a name that no other has.
  TemporaryFolder() {
    static int number = 0;
    make(fill(u"quillfile-{}-{}", static_cast<std::int32_t>(GetCurrentProcessId()), ++number));
  }
  explicit TemporaryFolder(const wchar_t* name) { make(view(name)); }
  ~TemporaryFolder() { empty(path_); }

  const Text& path() const { return path_; }
  Text operator/(TextView name) const { return fill(u"{}\\{}", path_, name); }

  // A file in this folder; gives its path.
  Text file(TextView name, std::string_view content = "content") const {
    const Text path = *this / name;
    const HANDLE handle =
        CreateFileW(wide(path), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD written = 0;
    WriteFile(handle, content.data(), static_cast<DWORD>(content.size()), &written, nullptr);
    CloseHandle(handle);
    return path;
  }

 private:
  void make(TextView name) {
    Text temp(MAX_PATH, u'\0');
    temp.resize(GetTempPathW(MAX_PATH, wide(temp)));
    path_ = fill(u"{}{}", temp, name);
    CreateDirectoryW(wide(path_), nullptr);
  }
  static void empty(const Text& folder) {
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW(wide(folder + u"\\*"), &found);
    do {
      const Text name{view(found.cFileName)};
      const Text path = fill(u"{}\\{}", folder, name);
      if (name == u"." || name == u"..") continue;
      SetFileAttributesW(wide(path), FILE_ATTRIBUTE_NORMAL);
      if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        empty(path);
      else
        DeleteFileW(wide(path));
    } while (FindNextFileW(search, &found));
    FindClose(search);
    RemoveDirectoryW(wide(folder));
  }

  Text path_;
};

}  // namespace quillfile::windows

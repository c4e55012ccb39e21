// DiskFiles: files by path, through the Win32 calls. The C++ library's own do not take long-path forms here.
#pragma once

#include "core/platform/system.h"

namespace quillfile::windows {

class DiskFiles final : public FileSystem {
 public:
  bool fileListed(TextView path) override;
  bool folderExists(TextView path) override;
  Text firstFreePath(TextView folder, TextView base, TextView extension) override;
  void deleteFile(TextView path) override;
  std::int32_t attributes(TextView path) override;
  void setAttributes(TextView path, std::int32_t attributes) override;
};

// A link's text comes out of a mail: only a full path of a drive or a share is looked up, never a device or a
// pattern.
class DiskLinkedFiles final : public LinkedFiles {
 public:
  explicit DiskLinkedFiles(FileSystem& files) : files_(files) {}
  bool exists(const Ref<SafeItem>& item, TextView path) override;

 private:
  FileSystem& files_;
};

}  // namespace quillfile::windows

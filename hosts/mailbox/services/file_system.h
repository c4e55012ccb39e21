// The ports FileSystem and LinkedFiles over a batch: a saved file answers as soon as it is written.
#pragma once

#include "core/platform/system.h"
#include "hosts/mailbox/services/saved_files.h"

namespace quillfile::mailbox {

// A file is listed when it is there and no directory; symbolic links are listed as what they are, files. A
// name that begins with a point is a name like any other. The read-only attribute is the lack of every write
// permission.
class HostFileSystem : public FileSystem {
 public:
  explicit HostFileSystem(SavedFiles& files) : files_(files) {}

  bool fileListed(TextView path) override;
  bool folderExists(TextView path) override;
  Text firstFreePath(TextView folder, TextView base, TextView extension) override;
  void deleteFile(TextView path) override;
  std::int32_t attributes(TextView path) override;
  void setAttributes(TextView path, std::int32_t attributes) override;

 private:
  SavedFiles& files_;
};

// A link's text comes out of a mail: only a regular file counts, no device, pipe, directory or symbolic link.
class HostLinkedFiles : public LinkedFiles {
 public:
  explicit HostLinkedFiles(SavedFiles& files) : files_(files) {}
  bool exists(const Ref<SafeItem>& item, TextView path) override;

 private:
  SavedFiles& files_;
};

}  // namespace quillfile::mailbox

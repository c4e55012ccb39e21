// The port FileTimes: local to UTC with the current bias, and the times of saved files through their open
// file.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>

#include "core/platform/system.h"
#include "hosts/mailbox/services/saved_files.h"

namespace quillfile::mailbox {

class HostFileTimes : public FileTimes {
 public:
  explicit HostFileTimes(SavedFiles& files) : files_(files) {}

  std::optional<FileTime> systemTimeToFileTime(const SystemTime& time) override;
  std::optional<FileTime> localFileTimeToFileTime(FileTime local) override;
  Handle openToChange(TextView path) override;
  Handle openAlone(TextView path) override;
  // Linux keeps no creation time that could be set: that one is left out.
  bool setTimes(Handle handle, FileTime creation, FileTime lastAccess, FileTime lastWrite) override;
  void close(Handle handle) override;
  std::int32_t lastError() override { return lastError_; }  // an errno

 private:
  struct Open {
    std::shared_ptr<SavedFile> waiting;  // or else
    Descriptor file;
  };
  Handle open(TextView path, int flags);

  SavedFiles& files_;
  std::unordered_map<Handle, Open> open_;
  Handle next_ = 1;
  std::int32_t lastError_ = 0;
};

}  // namespace quillfile::mailbox

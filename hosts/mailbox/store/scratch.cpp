#include "hosts/mailbox/store/scratch.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <optional>

#include "hosts/mailbox/services/descriptor.h"
#include "hosts/mailbox/services/failure.h"
#include "hosts/mailbox/services/file_content.h"

namespace quillfile::mailbox {
namespace {

constexpr std::size_t mostInMemory = std::size_t{1} << 20;

// Not every file system has files that never had a name.
Descriptor openNameless(const std::string& folder) {
  if (const int file = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_EXCL | O_CLOEXEC, 0600); file >= 0)
    return Descriptor{file};
  std::string name = folder + "/quillfile-XXXXXX";
  Descriptor file{::mkostemp(name.data(), O_CLOEXEC)};
  if (file) ::unlink(name.c_str());
  return file;
}

struct ScratchFile {
  std::string folder;
  Descriptor descriptor;
  std::size_t size = 0;

  ScratchFile() {
    const char* const chosen = ::getenv("TMPDIR");
    for (const char* const each : {chosen, "/var/tmp", "/tmp"}) {
      if (each == nullptr || *each != '/') continue;
      folder = each;
      if ((descriptor = openNameless(folder))) return;
    }
    throw fromErrno(errno, "make a temporary file in", folder);
  }
  void write(std::string_view bytes) {
    writeAll(descriptor.get(), bytes, "a temporary file in " + folder);
    size += bytes.size();
  }
};

}  // namespace

Scratch::Scratch(const Content& content) {
  std::optional<ScratchFile> file;
  content([&](std::string_view bytes) {
    if (small_.size() + bytes.size() > mostInMemory) {
      if (!file) file.emplace();
      file->write(small_);
      small_.clear();
    }
    if (bytes.size() > mostInMemory) return file->write(bytes);
    small_ += bytes;
  });
  if (!file) return;
  file->write(small_);
  small_ = {};
  mapped_ = std::make_unique<const Mapping>(file->descriptor.get(), file->size, file->folder);
}

void Scratch::forget(std::string_view range) const {
  if (mapped_) mapped_->forget(range);
}

}  // namespace quillfile::mailbox

#include "hosts/mailbox/engine/handled_notes.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <sstream>

#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {
namespace {

// Between the two no other process reads or writes the notes.
class Locked {
 public:
  explicit Locked(int file) : file_(file) { ::flock(file_, LOCK_EX); }
  ~Locked() { ::flock(file_, LOCK_UN); }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;

 private:
  int file_;
};

}  // namespace

HandledNotes::HandledNotes(std::string seenFile)
    : seenFile_(std::move(seenFile)), file_(seenFile_ + ".hand") {}

void HandledNotes::add(const std::string& itemId) {
  if (itemId == last_) return;
  last_ = itemId;
  if (::access(seenFile_.c_str(), F_OK) != 0) return;
  if (!open_) open_ = Descriptor{::open(file_.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600)};
  if (!open_) return;
  const Locked lock{open_.get()};
  const std::string line = itemId + "\n";
  (void)!::write(open_.get(), line.data(), line.size());
}

std::vector<std::string> HandledNotes::take() {
  struct stat status {};
  if (::stat(file_.c_str(), &status) != 0 || status.st_size == 0) return {};
  if (!open_) open_ = Descriptor{::open(file_.c_str(), O_RDWR | O_CLOEXEC)};
  if (!open_) throw fromErrno(errno, "open", file_);
  const Locked lock{open_.get()};
  std::string text;
  char buffer[16384];
  for (ssize_t size = 0;
       (size = ::pread(open_.get(), buffer, sizeof buffer, static_cast<off_t>(text.size()))) > 0;)
    text.append(buffer, static_cast<std::size_t>(size));
  if (::ftruncate(open_.get(), 0) != 0) throw fromErrno(errno, "empty", file_);
  std::vector<std::string> ids;
  std::istringstream lines{text};
  for (std::string id; std::getline(lines, id);) ids.push_back(id);
  return ids;
}

}  // namespace quillfile::mailbox

// The signal comes in the middle of reading a mapped byte, never in the middle of this file's own work. So
// the handler may wait for the list of mappings: whoever holds it is another thread, and soon done.
#include "hosts/mailbox/store/mapping.h"

#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {
namespace {

// Holds the list of mappings. No mutex: a signal's handler may not take one.
class ListHeld {
 public:
  ListHeld() {
    while (held.test_and_set(std::memory_order_acquire)) {
    }
  }
  ~ListHeld() { held.clear(std::memory_order_release); }
  ListHeld(const ListHeld&) = delete;
  ListHeld& operator=(const ListHeld&) = delete;

 private:
  static inline std::atomic_flag held;
};

Mapping* mappings = nullptr;
static_assert(std::atomic<bool>::is_always_lock_free);
struct sigaction before {};
const std::size_t page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));

}  // namespace

// Puts a page of zeros where one was lost; false when the address is in no mapping.
bool replaceLostPage(const void* address) {
  const auto at = static_cast<const char*>(address);
  const ListHeld hold;
  for (Mapping* mapping = mappings; mapping != nullptr; mapping = mapping->next_) {
    if (at < mapping->begin_ || at >= mapping->begin_ + mapping->size_) continue;
    const auto start = mapping->begin_ + static_cast<std::size_t>(at - mapping->begin_) / page * page;
    if (::mmap(start, page, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0) == MAP_FAILED)
      return false;
    mapping->whole_ = false;
    return true;
  }
  return false;
}

namespace {

// What is not ours happens once more, and then to whoever had the signal before: a fault by itself, as its
// instruction is tried again.
void onBusError(int, siginfo_t* info, void*) {
  const int error = errno;
  const bool fault = info->si_code > 0;
  if (!fault || !replaceLostPage(info->si_addr)) ::sigaction(SIGBUS, &before, nullptr);
  if (!fault) ::raise(SIGBUS);
  errno = error;
}

bool takeBusErrors() {
  struct sigaction action {};
  action.sa_sigaction = onBusError;
  action.sa_flags = SA_SIGINFO | SA_ONSTACK;
  ::sigemptyset(&action.sa_mask);
  return ::sigaction(SIGBUS, &action, &before) == 0;
}

}  // namespace

Mapping::Mapping(int file, std::size_t size, std::string_view path) : size_(size) {
  [[maybe_unused]] static const bool taken = takeBusErrors();
  void* const mapped = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
  if (mapped == MAP_FAILED) throw fromErrno(errno, "map the message", path);
  begin_ = static_cast<char*>(mapped);
  ::madvise(begin_, size_, MADV_SEQUENTIAL);
  const ListHeld hold;
  next_ = mappings;
  mappings = this;
}

Mapping::~Mapping() {
  {
    const ListHeld hold;
    Mapping** link = &mappings;
    while (*link != this) link = &(*link)->next_;
    *link = next_;
  }
  ::munmap(begin_, size_);
}

// Whole pages within the range only, so that neighbours stay.
void Mapping::forget(std::string_view range) const {
  if (range.empty()) return;
  const auto offset = static_cast<std::size_t>(range.data() - begin_);
  const std::size_t begin = (offset + page - 1) / page * page;
  const std::size_t end = (offset + range.size()) / page * page;
  if (begin < end) ::madvise(begin_ + begin, end - begin, MADV_DONTNEED);
}

}  // namespace quillfile::mailbox

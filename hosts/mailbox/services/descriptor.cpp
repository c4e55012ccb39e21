#include "hosts/mailbox/services/descriptor.h"

#include <unistd.h>

namespace quillfile::mailbox {

void Descriptor::reset() noexcept {
  if (number_ >= 0) ::close(number_);
  number_ = -1;
}

}  // namespace quillfile::mailbox

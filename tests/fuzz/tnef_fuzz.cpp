// Any bytes as a TNEF stream: an answer, and attachments that give as many bytes as they say.
#include <cstdint>

#include "hosts/mailbox/formats/tnef/tnef.h"
#include "tests/fuzz/require.h"

namespace {

void check(const quillfile::formats::MessageContent& message, std::string_view input) {
  for (const auto& one : message.attachments) {
    if (one.message) check(*one.message, input);
    if (!one.range) continue;
    const bool inside =
        one.range->empty() || (one.range->data() >= input.data() &&
                               one.range->data() + one.range->size() <= input.data() + input.size());
    require(inside && one.range->size() == one.size);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  if (const auto read = quillfile::formats::readTnef(input)) check(read->content, input);
  return 0;
}

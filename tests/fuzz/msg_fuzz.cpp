// Any bytes as a message file: an answer, and attachments that give as many bytes as they say, not more than
// the file has.
#include <cstdint>

#include "hosts/mailbox/formats/msg/message_file.h"
#include "tests/fuzz/require.h"

namespace {

std::uint64_t total(const quillfile::formats::MessageContent& message) {
  std::uint64_t result = 0;
  for (const auto& one : message.attachments) {
    if (one.message) result += total(*one.message);
    std::uint64_t given = 0;
    if (one.data) one.data([&](std::string_view bytes) { given += bytes.size(); });
    require(given == one.size);
    // An OLE object is written as a file of its own, with its own tables.
    if (one.method != quillfile::formats::AttachMethod::ole) result += given;
  }
  return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const auto read = quillfile::formats::readMessageFile(input);
  require(!read || total(read->content) <= size);
  return 0;
}

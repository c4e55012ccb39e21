// Any bytes as an mbox file: its messages stand in it one after the other and lose nothing but marks before
// "From ". And bodies of any bytes in an mbox file, with every such line marked, come back.
#include <algorithm>
#include <cstdint>

#include "hosts/mailbox/formats/import/mbox.h"
#include "tests/fuzz/require.h"

using namespace quillfile::formats;

namespace {

std::string written(const MboxMessage& message) {
  return gathered([&](const ByteSink& sink) { writeMboxMessage(message, sink); });
}

std::string withoutMarks(std::string_view bytes) {
  std::string result{bytes};
  std::erase(result, '>');
  return result;
}

std::string marked(std::string_view message) {
  std::string result;
  while (!message.empty()) {
    const auto line = message.substr(0, message.find('\n') + 1);
    if (line.substr(std::min(line.find_first_not_of('>'), line.size())).starts_with("From ")) result += '>';
    result += line;
    message.remove_prefix(line.size());
  }
  return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const auto messages = splitMbox(input);
  require(!isMbox(input) || !messages.empty());
  auto before = input.data();
  for (const auto& one : messages) {
    require(one.bytes.data() >= before && one.bytes.data() + one.bytes.size() <= input.data() + input.size());
    before = one.bytes.data() + one.bytes.size();
    require(withoutMarks(written(one)) == withoutMarks(one.bytes));
    if (!one.quoted) require(written(one) == one.bytes);
  }

  const std::string from = "From ada@example.org Sun Sep 13 12:26:40 2020\n";
  const std::string message = "Subject: s\n\n" + std::string{input} + "\n";
  const std::string file = from + marked(message) + "\n" + from + marked(message) + "\n";
  const auto back = splitMbox(file);
  require(back.size() == 2 && written(back[0]) == message && written(back[1]) == message);
  return 0;
}

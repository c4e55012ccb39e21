// Any bytes as a TNEF stream: an answer, and attachments that give as many bytes as they say. And any bytes
// as the container in a message: opened twice they give the same message, with parts that are whole.
#include <cstdint>

#include "hosts/mailbox/formats/tnef/tnef.h"
#include "hosts/mailbox/mime/encode.h"
#include "hosts/mailbox/outlook/container.h"
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

void checkOpened(std::string_view input) {
  using namespace quillfile;
  const std::string mail =
      "Content-Type: multipart/mixed; boundary=b\n\n--b\n\ntext\n--b\nContent-Type: application/ms-tnef\n"
      "Content-Transfer-Encoding: base64\n\n" +
      mime::toBase64(input, "\n") + "\n--b--\n";
  const auto opened = mailbox::withContainersOpened(std::make_shared<const mailbox::Message>(mail));
  if (&opened->stored() == opened.get()) return;
  require(mailbox::opensTheSameAgain(*opened) && opened->tree().doubt().empty());
  for (mime::PartIndex part = 0; part < opened->tree().size(); ++part)
    require(opened->tree().insideEmbedded(part) || opened->tree()[part].doubt.empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  if (const auto read = quillfile::formats::readTnef(input)) check(read->content, input);
  checkOpened(input);
  return 0;
}

#include "hosts/mailbox/outlook/second_reading.h"

#include "hosts/mailbox/mime/decode.h"
#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {

Content secondReading(std::shared_ptr<const Message> message, mime::PartIndex part) {
  return [message = std::move(message), part](const Sink& sink) {
    const auto& at = message->tree()[part];
    const auto behind = message->behind(at.body);
    const auto encoded = message->tree().body(part);
    if (at.encoding != mime::Encoding::base64 && at.encoding != mime::Encoding::quoted_printable) {
      mime::decode(at.encoding, encoded, sink, behind);
      return;
    }
    if (!mime::decodePlain(at.encoding, encoded, sink, behind))
      throw failure("Could not read the attachment a second time: its encoding is not as it should be");
  };
}

}  // namespace quillfile::mailbox

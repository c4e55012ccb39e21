// Containers: parts that hold a message's attachments and body in a format of their own. "winmail.dat" (TNEF)
// is one. A message that has any is looked at as it would be without: with what is inside in their place, as
// parts like others. It stays as it is on disk until something of it is taken out.
#pragma once

#include <memory>

#include "hosts/mailbox/outlook/message.h"

namespace quillfile::mailbox {

// The message with its containers opened; the message itself when there are none. A container that cannot be
// opened, has nothing in it or is larger than 256 MB is an attachment like others. The body inside becomes
// the message's: beside its plain text where it has that alone, else where the container is. Messages inside
// become mail, as an import would write them. The result does not let anything go
// (whyNothingMayGo) when something inside could not be carried over.
std::shared_ptr<const Message> withContainersOpened(std::shared_ptr<const Message> message);

// Whether opening the containers again, with the second decoder, gives the very same bytes. Asked before the
// opened message takes the stored one's place.
bool opensTheSameAgain(const Message& opened);

}  // namespace quillfile::mailbox

// RemovedPart: what a message remembers of a part that was taken out of it, so that `restore` can put back
// exactly the part that was there: its header lines and its place, in a field of our own in the message's
// header.
//
//   X-Quillfile-Attachment: at=1; in=LS09XzE=; path=L2hvbWUv…; header=Q29udGVudC1UeXBl…
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/mailbox/mime/part_tree.h"

namespace quillfile::mailbox {

inline constexpr std::string_view removedPartField = "X-Quillfile-Attachment";

struct RemovedPart {
  std::string path;      // of the saved file, UTF-8, as the link note has it
  std::string boundary;  // of the multipart it stood in; empty: it was the whole message
  std::uint32_t at = 0;  // its place among that multipart's children as they once were, from 0
  std::string header;    // its header lines as they stood; each ends in a line end
  bool operator==(const RemovedPart&) const = default;
};

// The field, folded, with a line end at its end.
std::string fieldOf(const RemovedPart& part, std::string_view lineEnd);
// The parts that the fields of a message's header tell of, topmost first; a field that cannot be read is
// passed over.
std::vector<RemovedPart> removedParts(const mime::Header& header);

// The multipart with that boundary, the first one where there are more; the message itself when `boundary` is
// empty. mime::noPart when there is no such multipart.
mime::PartIndex multipartOf(const mime::PartTree& tree, std::string_view boundary);
std::string boundaryOf(const mime::PartTree& tree, mime::PartIndex multipart);

// The places where the children that a multipart has now stood before any of the parts in `gone` was removed,
// in their order, for `children` of them.
std::vector<std::uint32_t> oldPlaces(std::size_t children, std::string_view boundary,
                                     const std::vector<RemovedPart>& gone);

}  // namespace quillfile::mailbox

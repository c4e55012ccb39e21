// RemovedPart: what a message remembers of a part that was taken out of it, so that `restore` can put back
// exactly the part that was there: its header lines and its place, in a field of our own in the message's
// header.
//
//   X-Quillfile-Attachment: in=1; at=0; path=L2hvbWUv…; header=Q29udGVudC1UeXBl…
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
  std::string parent;    // the multipart it stood in: "" the message itself, else child numbers from 1: "2.1"
  std::uint32_t at = 0;  // its place among that multipart's children as they once were, from 0
  std::string header;    // its header lines as they stood; each ends in a line end
  bool operator==(const RemovedPart&) const = default;
};

// The field, folded, with a line end at its end.
std::string fieldOf(const RemovedPart& part, std::string_view lineEnd);
// The parts that the fields of a message's header tell of, topmost first; a field that cannot be read is
// passed over.
std::vector<RemovedPart> removedParts(const mime::Header& header);

// Paths count children as they once were, before any of the parts in `gone` was removed.
// The multipart that `path` ("2.1") names; mime::noPart when there is none now.
mime::PartIndex multipartAt(const mime::PartTree& tree, std::string_view path,
                            const std::vector<RemovedPart>& gone);
// Where `part` stands: its multipart's path, and its place there. A part that is the whole message stands in
// the message itself, at 1: behind the text that takes its place.
struct Place {
  std::string parent;
  std::uint32_t at = 0;
};
Place placeOf(const mime::PartTree& tree, mime::PartIndex part, const std::vector<RemovedPart>& gone);
// Where the children that are left of the multipart at `path` stood, in their order now.
std::vector<std::uint32_t> oldPlaces(std::size_t children, std::string_view path,
                                     const std::vector<RemovedPart>& gone);

}  // namespace quillfile::mailbox

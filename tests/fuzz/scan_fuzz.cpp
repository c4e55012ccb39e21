// The scanner and the splice. Whatever the bytes are: the parts lie inside one another, an edit keeps every
// byte outside of it, and the rewritten message has the parts that were to stay.
#include <cstdint>
#include <string>

#include "hosts/mailbox/mime/edit.h"
#include "hosts/mailbox/mime/protection.h"
#include "hosts/mailbox/mime/scan.h"
#include "tests/fuzz/require.h"

using namespace quillfile;
using namespace quillfile::mime;

namespace {

void requireNested(const PartTree& tree) {
  for (PartIndex i = 0; i < tree.size(); ++i) {
    const auto& part = tree[i];
    require(part.opening.begin <= part.opening.end && part.opening.end <= part.header.begin);
    require(part.header.begin <= part.header.end && part.header.end <= part.body.begin);
    require(part.body.begin <= part.body.end && part.body.end <= tree.message().size());
    require(i == 0 || (part.parent < i && tree[part.parent].body.contains(part.whole())));
  }
}

std::string apply(const Edit& edit, const PartTree& tree) {
  std::string result;
  const auto pieces = edit.pieces();
  write(tree.message(), pieces, [&](std::string_view bytes) { result += bytes; });
  require(check(tree.message(), pieces, edit.cuts(), result));
  return result;
}

}  // namespace

// The first two bytes choose the edit, the rest is the message.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::string_view message{reinterpret_cast<const char*>(data) + 2, size - 2};
  constexpr ScanLimits limits{.depth = 8, .parts = 40, .headerBytes = 2'000, .boundaryBytes = 100};
  const auto tree = scan(message, {}, limits);
  requireNested(tree);
  protection(tree);

  Edit edit{tree};
  for (PartIndex part = 0; part < tree.size(); ++part) {
    const bool embedded = part > 0 && tree[tree[part].parent].kind == PartKind::message;
    if (data[0] >> part % 8 & 1 && !embedded) edit.remove(part);
  }
  if (data[1] & 1)
    edit.add({.name = u"a.bin", .description = {}, .content = [](const Sink& sink) { sink("ABC"); }});
  if (data[1] & 2) edit.addBody(BodyFormat::plain, u"body\n");
  if (data[1] & 4) edit.setHeader("Subject", u"s");
  if (data[1] & 8 && tree[0].kind == PartKind::leaf && tree.type(0).type == "text")
    edit.setText(0, u"text \u20AC");
  const auto result = apply(edit, tree);
  // A message that is doubted anywhere is never rewritten, so that only the others must be read back as
  // meant.
  bool doubted = !tree.doubt().empty();
  for (const auto& part : tree.parts()) doubted = doubted || !part.doubt.empty();
  // What was added may go beyond the limits; what a boundary line is stays the same.
  constexpr ScanLimits wider{.boundaryBytes = limits.boundaryBytes};
  require(doubted || edit.holds(scan(result, {}, wider)));
  return 0;
}

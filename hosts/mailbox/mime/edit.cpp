#include "hosts/mailbox/mime/edit.h"

#include <algorithm>
#include <random>

#include "hosts/mailbox/mime/splice.h"

namespace quillfile::mime {
namespace {

// 128 random bits, so that no message has it in it; "=_" can stand in no encoded text (RFC 2045 6.7).
std::string newBoundary() {
  constexpr std::string_view digits = "0123456789abcdef";
  std::random_device random;
  std::string boundary = "=_";
  for (int i = 0; i < 32; ++i) boundary += digits[random() & 0xF];
  return boundary;
}

std::vector<PartIndex> leaves(const PartTree& tree) {
  std::vector<PartIndex> found;
  for (PartIndex part = 0; part < tree.size(); ++part) {
    if (tree[part].kind == PartKind::leaf) found.push_back(part);
  }
  return found;
}

// A header that ends with the message, in the middle of a line, gets a line end when something is put behind
// it.
bool sameHeader(std::string_view before, std::string_view after) {
  if (!after.starts_with(before)) return false;
  const auto added = after.substr(before.size());
  return added.empty() || (!before.ends_with('\n') && (added == "\n" || added == "\r\n"));
}

bool sameLeaf(const PartTree& tree, PartIndex part, const PartTree& other, PartIndex otherPart) {
  return (part == 0 || sameHeader(tree.header(part).block(), other.header(otherPart).block())) &&
         tree[part].encoding == other[otherPart].encoding &&
         tree[part].body.size() == other[otherPart].body.size();
}

}  // namespace

Edit::Edit(const PartTree& tree) : tree_{tree}, boundary_{newBoundary()} {}

void Edit::remove(PartIndex part) { removed_.insert(part); }
void Edit::setText(PartIndex part, TextView text) { texts_.insert_or_assign(part, Text{text}); }
void Edit::addBody(BodyFormat format, TextView text) { bodies_.emplace_back(format, text); }
void Edit::add(NewPart part) { added_.push_back(std::move(part)); }

void Edit::setHeader(std::string_view name, TextView value) {
  std::erase_if(headers_, [&](const auto& header) { return equalWords(header.first, name); });
  headers_.emplace_back(name, value);
}

void Edit::addField(std::string_view field) { fields_ += field; }

bool Edit::empty() const {
  return removed_.empty() && texts_.empty() && bodies_.empty() && added_.empty() && headers_.empty() &&
         fields_.empty();
}

bool Edit::removes(PartIndex part) const {
  for (; part != noPart; part = tree_[part].parent) {
    if (removed_.contains(part)) return true;
  }
  return false;
}

Pieces Edit::pieces() const {
  const Splice splice{*this};
  Pieces pieces;
  std::size_t done = 0;
  for (const auto& change : splice.changes()) {
    if (change.cut.begin > done) pieces.emplace_back(Range{done, change.cut.begin});
    pieces.insert(pieces.end(), change.pieces.begin(), change.pieces.end());
    done = std::max(done, std::max(change.cut.begin, change.cut.end));
  }
  if (done < tree_.message().size()) pieces.emplace_back(Range{done, tree_.message().size()});
  return pieces;
}

std::vector<Range> Edit::cuts() const {
  const Splice splice{*this};
  std::vector<Range> cuts;
  for (const auto& change : splice.changes()) {
    if (!change.cut.empty()) cuts.push_back(change.cut);
  }
  return cuts;
}

bool Edit::holds(const PartTree& rewritten) const {
  const auto after = leaves(rewritten);
  auto next = bodies_.size();
  for (const auto part : leaves(tree_)) {
    if (removes(part)) continue;
    if (next >= after.size()) return false;
    if (!texts_.contains(part) && !sameLeaf(tree_, part, rewritten, after[next])) return false;
    ++next;
  }
  const bool emptyBody = removed_.contains(0) && bodies_.empty() && added_.empty();
  const auto expected = next + added_.size() + (emptyBody ? 1 : 0);
  const bool addsMessage = std::any_of(added_.begin(), added_.end(),
                                       [](const NewPart& part) { return part.type == "message/rfc822"; });
  return addsMessage ? after.size() >= expected : after.size() == expected;
}

}  // namespace quillfile::mime

#include "hosts/mailbox/outlook/text_change.h"

#include <algorithm>
#include <cstring>

namespace quillfile::mailbox {
namespace {

bool highSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }

// Whether a cut in front of `at` would part two units that belong together.
bool parts(TextView text, std::size_t at) {
  if (at == 0 || at >= text.size()) return false;
  return (text[at - 1] == u'\r' && text[at] == u'\n') || highSurrogate(text[at - 1]);
}

struct Difference {
  std::size_t begin, end;  // of the old text
  TextView text;           // what the new one has there
};

// How many units the two have in common at their beginning, and at their end; whole blocks at first.
constexpr std::size_t block = 1024;
bool sameBlock(const char16_t* a, const char16_t* b) { return std::memcmp(a, b, block * sizeof *a) == 0; }
std::size_t commonFront(TextView a, TextView b, std::size_t most) {
  std::size_t count = 0;
  while (count + block <= most && sameBlock(&a[count], &b[count])) count += block;
  while (count < most && a[count] == b[count]) ++count;
  return count;
}
std::size_t commonBack(TextView a, TextView b, std::size_t most) {
  std::size_t count = 0;
  const auto blockOf = [&](TextView text) { return &text[text.size() - count - block]; };
  while (count + block <= most && sameBlock(blockOf(a), blockOf(b))) count += block;
  while (count < most && a[a.size() - 1 - count] == b[b.size() - 1 - count]) ++count;
  return count;
}

Difference difference(TextView before, TextView after) {
  const auto shorter = std::min(before.size(), after.size());
  std::size_t front = commonFront(before, after, shorter);
  while (front > 0 && (parts(before, front) || parts(after, front))) --front;
  std::size_t back = commonBack(before, after, shorter - front);
  while (back > 0 && (parts(before, before.size() - back) || parts(after, after.size() - back))) --back;
  return {front, before.size() - back, after.substr(front, after.size() - back - front)};
}

}  // namespace

TextChange::TextChange(Text original) : original_(std::move(original)) {}

void TextChange::set(TextView next) {
  const auto [begin, end, text] = difference(current(), next);
  if (begin == end && text.empty()) return;
  replace(begin, end, Text{text});
  Text kept{next};
  current_ = std::move(kept);
  changed_ = true;
}

// `begin` and `end` count in the current text. The hunks that they touch become one with the new one.
void TextChange::replace(std::size_t begin, std::size_t end, TextView text) {
  std::vector<Hunk> hunks;
  hunks.reserve(hunks_.size() + 1);
  // How far the current text is ahead of the original behind the hunks passed so far.
  std::ptrdiff_t ahead = 0;
  const auto toOriginal = [&](std::size_t at) {
    return static_cast<std::size_t>(static_cast<std::ptrdiff_t>(at) - ahead);
  };
  std::size_t i = 0;
  const auto grow = [&](const Hunk& hunk) {
    ahead += static_cast<std::ptrdiff_t>(hunk.replacement.size()) -
             static_cast<std::ptrdiff_t>(hunk.end - hunk.begin);
  };
  const auto startOf = [&](const Hunk& hunk) {
    return static_cast<std::size_t>(static_cast<std::ptrdiff_t>(hunk.begin) + ahead);
  };
  for (; i < hunks_.size() && startOf(hunks_[i]) + hunks_[i].replacement.size() < begin; ++i) {
    grow(hunks_[i]);
    hunks.push_back(std::move(hunks_[i]));
  }
  Hunk merged{toOriginal(begin), 0, {}};
  for (; i < hunks_.size() && startOf(hunks_[i]) <= end; ++i) {
    const Hunk& hunk = hunks_[i];
    const std::size_t start = startOf(hunk), stop = start + hunk.replacement.size();
    if (start < begin) merged.replacement.append(hunk.replacement, 0, begin - start);
    merged.begin = std::min(merged.begin, hunk.begin);
    if (stop > end) {  // its tail stands behind what is replaced
      merged.replacement.append(text);
      merged.replacement.append(hunk.replacement, end - start, TextView::npos);
      merged.end = hunk.end;
      hunks.push_back(std::move(merged));
      for (++i; i < hunks_.size(); ++i) hunks.push_back(std::move(hunks_[i]));
      hunks_ = std::move(hunks);
      return;
    }
    grow(hunk);
  }
  merged.replacement.append(text);
  merged.end = toOriginal(end);
  if (merged.begin != merged.end || !merged.replacement.empty()) hunks.push_back(std::move(merged));
  for (; i < hunks_.size(); ++i) hunks.push_back(std::move(hunks_[i]));
  hunks_ = std::move(hunks);
}

}  // namespace quillfile::mailbox

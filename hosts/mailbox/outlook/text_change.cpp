#include "hosts/mailbox/outlook/text_change.h"

#include <algorithm>
#include <cstring>

namespace quillfile::mailbox {
namespace {

// Whether two neighbours belong together: the halves of a line end, or of a surrogate pair.
bool isPair(char16_t first, char16_t second) {
  return (first == u'\r' && second == u'\n') || (first >= 0xD800 && first <= 0xDBFF);
}

std::ptrdiff_t growth(const Hunk& hunk) {
  return static_cast<std::ptrdiff_t>(hunk.replacement.size()) -
         static_cast<std::ptrdiff_t>(hunk.end - hunk.begin);
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
  const std::size_t front = commonFront(before, after, shorter);
  const std::size_t back = commonBack(before, after, shorter - front);
  return {front, before.size() - back, after.substr(front, after.size() - back - front)};
}

std::size_t plus(std::size_t at, std::ptrdiff_t distance) {
  return static_cast<std::size_t>(static_cast<std::ptrdiff_t>(at) + distance);
}

}  // namespace

TextChange::TextChange(Text original, const std::vector<Hunk>& hunks) : TextChange(std::move(original)) {
  std::for_each(hunks.rbegin(), hunks.rend(),
                [this](const Hunk& hunk) { replace(hunk.begin, hunk.end, hunk.replacement); });
}

Text TextChange::original() const {
  Text result;
  result.reserve(originalSize_);
  const auto now = current();
  std::size_t at = 0;
  std::ptrdiff_t ahead = 0;
  for (const auto& hunk : hunks_) {
    const auto start = plus(hunk.begin, ahead);
    result.append(now, at, start - at).append(hunk.was);
    at = start + hunk.replacement.size();
    ahead += growth(hunk);
  }
  result.append(now, at, TextView::npos);
  return result;
}

Text TextChange::release() && {
  text_.erase(0, front_);
  return std::move(text_);
}

void TextChange::set(TextView next) {
  const auto [begin, end, text] = difference(current(), next);
  replace(begin, end, text);
}

void TextChange::replace(std::size_t begin, std::size_t end, TextView with) {
  if (begin == end && with.empty()) return;
  const auto now = current();
  Text wider{with};
  while (begin > 0 && ((begin < now.size() && isPair(now[begin - 1], now[begin])) ||
                       (!wider.empty() && isPair(now[begin - 1], wider.front())) ||
                       (wider.empty() && end < now.size() && isPair(now[begin - 1], now[end]))))
    wider.insert(wider.begin(), now[--begin]);
  while (end < now.size() &&
         ((end > 0 && isPair(now[end - 1], now[end])) || (!wider.empty() && isPair(wider.back(), now[end]))))
    wider += now[end++];
  record(begin, end, wider);
  move(begin, end, wider);
}

// `begin` and `end` count in the current text. The hunks that they touch become one with the new one. Changes
// mostly go forward in a text, so the search for these begins at the last hunk.
void TextChange::record(std::size_t begin, std::size_t end, TextView with) {
  const auto now = current();
  // How far the current text is ahead of the original behind hunk `last`.
  auto ahead = static_cast<std::ptrdiff_t>(now.size()) - static_cast<std::ptrdiff_t>(originalSize_);
  auto last = hunks_.size();
  const auto startOf = [&](std::size_t i, std::ptrdiff_t behind) {
    return plus(hunks_[i].begin, behind - growth(hunks_[i]));
  };
  for (; last > 0 && startOf(last - 1, ahead) > end; --last) ahead -= growth(hunks_[last - 1]);
  auto first = last;
  auto before = ahead;  // and in front of hunk `first`
  for (; first > 0 && startOf(first - 1, before) + hunks_[first - 1].replacement.size() >= begin; --first)
    before -= growth(hunks_[first - 1]);

  Hunk merged{plus(begin, -before), plus(end, -ahead), {}, {}};
  Text tail;
  std::size_t at = begin;
  for (std::size_t i = first; i < last; ++i) {
    auto& hunk = hunks_[i];
    const auto start = plus(hunk.begin, before), stop = start + hunk.replacement.size();
    if (start < begin) merged.begin = hunk.begin;
    if (start > at) merged.was.append(now, at, start - at);
    if (stop > end) {  // its tail stands behind what is replaced
      merged.end = hunk.end;
      tail.assign(hunk.replacement, end - start);
    }
    at = stop;
    before += growth(hunk);
    // What the first one holds is taken over: it may be large and grow step by step.
    if (merged.was.empty())
      merged.was.swap(hunk.was);
    else
      merged.was.append(hunk.was);
    if (start < begin) {
      merged.replacement.swap(hunk.replacement);
      merged.replacement.resize(begin - start);
    }
  }
  if (at < end) merged.was.append(now, at, end - at);
  merged.replacement.append(with).append(tail);
  const auto place = hunks_.erase(hunks_.begin() + static_cast<std::ptrdiff_t>(first),
                                  hunks_.begin() + static_cast<std::ptrdiff_t>(last));
  if (merged.was != merged.replacement) hunks_.insert(place, std::move(merged));
}

void TextChange::move(std::size_t begin, std::size_t end, TextView with) {
  const auto size = end - begin;
  if (with.size() > size || begin > current().size() - end) {
    text_.replace(front_ + begin, size, with);
    return;
  }
  const auto from = text_.begin() + static_cast<std::ptrdiff_t>(front_);
  const auto to = text_.begin() + static_cast<std::ptrdiff_t>(front_ + end - with.size());
  std::move_backward(from, from + static_cast<std::ptrdiff_t>(begin), to);
  std::copy(with.begin(), with.end(), to);
  front_ += size - with.size();
}

Text applied(TextView text, const std::vector<Hunk>& hunks) {
  Text result;
  std::size_t at = 0;
  for (const auto& hunk : hunks) {
    result.append(text, at, hunk.begin - at).append(hunk.replacement);
    at = hunk.end;
  }
  result.append(text, at, TextView::npos);
  return result;
}

}  // namespace quillfile::mailbox

#include "hosts/mailbox/outlook/splice.h"

#include <algorithm>

namespace quillfile::mailbox {

mime::Pieces spliced(mime::Pieces pieces, std::vector<Splice> splices) {
  std::stable_sort(splices.begin(), splices.end(),
                   [](const Splice& a, const Splice& b) { return a.range.begin < b.range.begin; });
  mime::Pieces result;
  auto next = splices.begin();
  const auto emit = [&] {
    for (auto& piece : next->pieces) result.push_back(std::move(piece));
    ++next;
  };
  for (auto& piece : pieces) {
    const auto* range = std::get_if<mime::Range>(&piece);
    if (range == nullptr) {
      result.push_back(std::move(piece));
      continue;
    }
    std::size_t at = range->begin;
    // An insertion at a place that is left out stands where the next kept byte does; a replacement goes with
    // it.
    while (next != splices.end() && next->range.begin < at) {
      if (next->range.empty()) {
        emit();
      } else {
        at = std::clamp(next->range.end, at, range->end);
        ++next;
      }
    }
    while (next != splices.end() && next->range.begin <= range->end) {
      if (!next->range.empty() && next->range.begin == range->end)
        break;  // it begins with the next kept byte
      if (next->range.begin > at) result.emplace_back(mime::Range{at, next->range.begin});
      at = std::clamp(next->range.end, std::max(at, next->range.begin), range->end);
      emit();
    }
    if (at < range->end) result.emplace_back(mime::Range{at, range->end});
  }
  while (next != splices.end()) {
    if (next->range.empty()) {
      emit();
    } else {
      ++next;
    }
  }
  return result;
}

std::vector<mime::Range> cutsWith(std::vector<mime::Range> cuts, const std::vector<Splice>& splices) {
  for (const auto& splice : splices)
    if (!splice.range.empty()) cuts.push_back(splice.range);
  std::sort(cuts.begin(), cuts.end(),
            [](const mime::Range& a, const mime::Range& b) { return a.begin < b.begin; });
  std::vector<mime::Range> merged;
  for (const auto& cut : cuts) {
    if (!merged.empty() && cut.begin <= merged.back().end) {
      merged.back().end = std::max(merged.back().end, cut.end);
    } else {
      merged.push_back(cut);
    }
  }
  return merged;
}

}  // namespace quillfile::mailbox

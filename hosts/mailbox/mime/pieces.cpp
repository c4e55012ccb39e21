#include "hosts/mailbox/mime/pieces.h"

#include <algorithm>

#include "hosts/mailbox/mime/decode.h"
#include "hosts/mailbox/mime/encode.h"

namespace quillfile::mime {
namespace {

template <class... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

constexpr std::size_t step = std::size_t{256} << 10;

void inSteps(std::string_view original, const Range& range, Progress& progress, const Sink& sink) {
  for (auto at = range.begin; at < range.end; progress.reached(at)) {
    const auto part = original.substr(at, std::min(step, range.end - at));
    sink(part);
    at += part.size();
  }
}

// Whether the ranges ascend and what lies between them was meant to be cut.
bool keepsTheRest(std::size_t size, const Pieces& pieces, const std::vector<Range>& cuts) {
  std::size_t kept = 0;
  auto cut = cuts.begin();
  const auto mayLose = [&](std::size_t until) {
    for (auto at = kept; at < until;) {
      while (cut != cuts.end() && cut->end <= at) ++cut;
      if (cut == cuts.end() || cut->begin > at) return false;
      at = cut->end;
    }
    return true;
  };
  for (const auto& piece : pieces) {
    const auto* range = std::get_if<Range>(&piece);
    if (!range) continue;
    if (range->begin < kept || range->end < range->begin || range->end > size || !mayLose(range->begin))
      return false;
    kept = range->end;
  }
  return mayLose(size);
}

// Reads the rewritten message front to back and compares it with what each piece says.
class Comparison {
 public:
  Comparison(std::string_view rewritten, const Behind& behind) : rewritten_{rewritten}, progress_{behind} {}

  void expect(std::string_view bytes) {
    for (; !bytes.empty() && same_; bytes.remove_prefix(std::min(step, bytes.size()))) {
      const auto part = bytes.substr(0, step);
      same_ = take(part.size()) == part;
    }
  }

  // Compares in stretches of whole lines: each is decoded for itself.
  void expectBase64(const StreamedContent& piece) {
    constexpr std::size_t stretch = 1024 * base64LineBytes;
    std::string bytes;
    bool first = true;
    const auto compare = [&](std::string_view source) {
      if (!first) expect(piece.lineEnd);
      first = false;
      same_ = same_ &&
              decodePlain(Encoding::base64, take(base64Size(source.size(), piece.lineEnd.size()))) == source;
    };
    piece.content([&](std::string_view chunk) {
      bytes += chunk;
      std::size_t done = 0;
      for (; bytes.size() - done >= stretch; done += stretch)
        compare(std::string_view{bytes}.substr(done, stretch));
      bytes.erase(0, done);
    });
    if (!bytes.empty()) compare(bytes);
  }

  bool complete() const { return same_ && at_ == rewritten_.size(); }

 private:
  std::string_view take(std::size_t size) {
    const auto taken = rewritten_.substr(std::min(at_, rewritten_.size()), size);
    at_ += size;
    progress_.reached(at_);
    return taken;
  }

  std::string_view rewritten_;
  Progress progress_;
  std::size_t at_ = 0;
  bool same_ = true;
};

}  // namespace

void write(std::string_view original, const Pieces& pieces, const Sink& sink, const Behind& behind) {
  Progress progress{behind};
  const Overloaded writer{
      [&](const Range& range) { inSteps(original, range, progress, sink); },
      [&](const std::string& bytes) { sink(bytes); },
      [&](const StreamedContent& piece) {
        if (!piece.base64) return piece.content(sink);
        Base64Encoder encoder{piece.lineEnd, sink};
        piece.content([&](std::string_view chunk) { encoder.write(chunk); });
        encoder.finish();
      },
  };
  for (const auto& piece : pieces) std::visit(writer, piece);
  progress.ended(original.size());
}

bool check(std::string_view original, const Pieces& pieces, const std::vector<Range>& cuts,
           std::string_view rewritten, const Behind& behindOriginal, const Behind& behindRewritten) {
  if (!keepsTheRest(original.size(), pieces, cuts)) return false;
  Progress progress{behindOriginal};
  Comparison comparison{rewritten, behindRewritten};
  const Overloaded compare{
      [&](const Range& range) {
        inSteps(original, range, progress, [&](std::string_view part) { comparison.expect(part); });
      },
      [&](const std::string& bytes) { comparison.expect(bytes); },
      [&](const StreamedContent& piece) {
        if (piece.base64) return comparison.expectBase64(piece);
        piece.content([&](std::string_view chunk) { comparison.expect(chunk); });
      },
  };
  for (const auto& piece : pieces) std::visit(compare, piece);
  return comparison.complete();
}

}  // namespace quillfile::mime

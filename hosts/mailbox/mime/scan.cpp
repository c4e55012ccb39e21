#include "hosts/mailbox/mime/scan.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>

namespace quillfile::mime {
namespace {

constexpr Doubt tooDeep = u"its parts are nested too deep";
constexpr Doubt tooMany = u"it has too many parts";
constexpr Doubt longHeader = u"one of its headers is too long";
constexpr Doubt cutOff = u"the message ends before its last boundary line";
constexpr Doubt sameBoundary =
    u"one of its multiparts has no end of its own, and the boundary of one around it";
constexpr Doubt noBoundary = u"it is a multipart without parts";
constexpr Doubt encodedMultipart = u"it is a multipart with a transfer encoding";

// A part whose end has not been seen yet. Only a multipart that waits for its closing line has a boundary.
struct OpenPart {
  PartIndex part;
  std::string boundary;
};

// The tree keeps the types of so many parts whose headers are no longer: those of nearly every mail, and
// nothing that a hostile one could make large.
constexpr std::size_t mostTypes = 64;
constexpr std::size_t longestOfType = 4 << 10;  // bytes of a header

struct BoundaryLine {
  std::size_t level;  // in the chain of open parts
  bool closes;
  std::size_t start;    // of the line
  std::size_t textEnd;  // before its line end
  std::size_t lineEnd;  // after it
};

bool isEncoded(Encoding encoding) { return encoding != Encoding::identity && encoding != Encoding::unknown; }

// "b--" ends what "b" begins, and may itself be a boundary.
std::string_view withoutDashes(std::string_view boundary) {
  while (boundary.ends_with("--")) boundary.remove_suffix(2);
  return boundary;
}

// Whether a line can stand in a header: a field (blanks before the colon are obsolete and allowed) or the
// continuation of one.
bool isHeaderLine(std::string_view line) {
  if (line[0] == ' ' || line[0] == '\t') return true;
  const auto name = static_cast<std::size_t>(
      std::find_if(line.begin(), line.end(), [](char c) { return c <= ' ' || c == ':' || c == 0x7F; }) -
      line.begin());
  const auto colon = line.find_first_not_of(" \t", name);
  return name > 0 && colon != line.npos && line[colon] == ':';
}

class Scanner {
 public:
  Scanner(std::string_view message, const Behind& behind, const ScanLimits& limits)
      : message_{message}, behind_{behind}, limits_{limits} {}

  PartTree run() {
    open(Range{}, noPart);
    for (auto at = parts_[0].body.begin; waiting_ > 0;) {
      const auto line = nextBoundaryLine(at);
      if (!line) break;
      meet(*line);
      at = line->closes ? line->textEnd : parts_.back().body.begin;
    }
    end(0, message_.size());
    return {message_, std::move(parts_), std::move(types_), doubt_};
  }

 private:
  // Opens the part that begins after `opening`: reads its header, and the headers of the messages embedded in
  // it.
  void open(Range opening, PartIndex parent) {
    for (bool embeds = true; embeds;) {
      const auto index = static_cast<PartIndex>(parts_.size());
      if (index >= limits_.parts) doubt_ = tooMany;
      Part part{.opening = opening, .header = {}, .body = {}, .closing = {}, .parent = parent, .doubt = {}};
      part.depth = parent == noPart ? 0 : parts_[parent].depth + 1;
      if (index >= limits_.parts) {
        part.header = {opening.end, opening.end};
        part.body.begin = opening.end;
        part.doubt = tooMany;
      } else {
        readHeader(part);
      }
      parts_.push_back(part);
      chain_.push_back({index, {}});
      if (doubt_ == tooMany) return forgetBoundaries();
      classify(index);
      embeds = parts_[index].kind == PartKind::message;
      opening = Range{parts_[index].body.begin, parts_[index].body.begin};
      parent = index;
    }
  }

  void readHeader(Part& part) {
    const auto begin = part.opening.end;
    auto at = begin;
    if (begin == 0 && message_.starts_with("From ")) at = lineEndAfter(0);
    part.header.begin = at;
    for (;;) {
      part.header.end = part.body.begin = at;
      if (at == message_.size() || boundaryLineAt(at)) return;
      const auto next = lineEndAfter(at);
      const auto line = message_.substr(at, next - at);
      if (next - begin > limits_.headerBytes) {
        part.doubt = doubt_ = longHeader;
        return;
      }
      if (line == "\n" || line == "\r\n") {
        part.body.begin = next;
        return;
      }
      if (!isHeaderLine(line)) return;
      at = next;
    }
  }

  void classify(PartIndex index) {
    auto& part = parts_[index];
    const Header header{part.header.of(message_)};
    part.encoding = encodingNamed(header.value("Content-Transfer-Encoding"));
    if (part.doubt == longHeader) return;
    const ContentType& type = typeOf(index, header);
    const bool embedded = type.is("message/rfc822") || type.is("message/global");
    const bool multipart = type.is("multipart/*");
    if (!multipart && (!embedded || isEncoded(part.encoding))) return;
    if (part.depth >= limits_.depth) {
      part.doubt = doubt_ = tooDeep;
      return;
    }
    if (embedded) {
      part.kind = PartKind::message;
      return;
    }
    const auto boundary = type.parameters.bytes("boundary").value_or("");
    const auto trimmedBoundary = boundary.substr(0, boundary.find_last_not_of(" \t\r\n") + 1);
    if (trimmedBoundary.empty() || trimmedBoundary.size() > limits_.boundaryBytes) {
      part.doubt = noBoundary;
      return;
    }
    part.kind = PartKind::multipart;
    if (isEncoded(part.encoding)) part.doubt = encodedMultipart;
    chain_.back().boundary = trimmedBoundary;
    ++waiting_;
    digests_.resize(parts_.size());
    digests_[index] = type.subtype == "digest";
  }

  // Valid until the next part is classified.
  const ContentType& typeOf(PartIndex index, const Header& header) {
    const auto parent = parts_[index].parent;
    const bool inDigest = parent != noPart && digests_.size() > parent && digests_[parent];
    type_ = inDigest && !header.field("Content-Type")
                ? ContentType{.type = "message", .subtype = "rfc822", .parameters = {}}
                : contentType(header);
    const bool isKept = types_.size() == index && index < mostTypes && header.block().size() <= longestOfType;
    return isKept ? types_.emplace_back(std::move(type_)) : type_;
  }

  // A boundary line ends everything that is open inside its multipart, and opens the next child or ends the
  // last.
  void meet(const BoundaryLine& line) {
    const auto multipart = chain_[line.level].part;
    const auto begin = withLineEndBefore(line.start);
    end(line.level + 1, begin);
    if (line.closes) {
      parts_[multipart].closing = {begin, line.textEnd};
      chain_[line.level].boundary.clear();
      --waiting_;
    } else {
      auto last = line;  // a boundary line that is doubled opens one part, not an empty one before
      while (const auto next = boundaryLineAt(last.lineEnd)) {
        if (next->level != line.level || next->closes) break;
        last = *next;
      }
      open({begin, last.lineEnd}, multipart);
    }
  }

  // Ends the open parts from `level` of the chain on. At the end of the message, those inside a multipart
  // that still waits for its closing line may be cut off.
  void end(std::size_t level, std::size_t at) {
    bool cut = false;
    for (auto i = level; i < chain_.size(); ++i) {
      auto& part = parts_[chain_[i].part];
      const bool waits = !chain_[i].boundary.empty();
      part.body.end = at;
      cut = cut || (waits && at == message_.size());
      if (cut && part.doubt.empty()) part.doubt = cutOff;
      if (waits && part.doubt.empty() && isBoundaryAround(i)) part.doubt = sameBoundary;
      if (part.kind == PartKind::multipart && part.closing.end == 0) {
        part.closing = {at, at};
        if (!hasChildren(chain_[i].part)) becomeLeaf(part);
      }
      if (waits) --waiting_;
    }
    chain_.resize(level);
  }

  // Whether the lines of a multipart around the one at `level` could be its own: without the line that ended
  // it they would be.
  bool isBoundaryAround(std::size_t level) const {
    return std::any_of(chain_.begin(), chain_.begin() + static_cast<std::ptrdiff_t>(level),
                       [&](const auto& around) {
                         return !around.boundary.empty() &&
                                withoutDashes(around.boundary) == withoutDashes(chain_[level].boundary);
                       });
  }

  bool hasChildren(PartIndex part) const {
    return part + 1 < parts_.size() && parts_[part + 1].parent == part;
  }

  // A multipart without a single boundary line: what its body holds is for the reader to make out.
  static void becomeLeaf(Part& part) {
    part.kind = PartKind::leaf;
    part.doubt = noBoundary;
  }

  void forgetBoundaries() {
    for (auto& part : chain_) part.boundary.clear();
    waiting_ = 0;
  }

  // The line end before a boundary line belongs to it, unless it ends the header of the part before.
  std::size_t withLineEndBefore(std::size_t start) const {
    auto begin = start;
    if (begin > 0 && message_[begin - 1] == '\n') --begin;
    if (begin > 0 && begin < start && message_[begin - 1] == '\r') --begin;
    return std::max(begin, std::min(start, parts_[chain_.back().part].body.begin));
  }

  std::optional<BoundaryLine> nextBoundaryLine(std::size_t at) {
    for (at = find('-', at); at < message_.size(); at = find('-', at)) {
      const bool startsLine = at == 0 || message_[at - 1] == '\n';
      if (startsLine) {
        if (const auto line = boundaryLineAt(at)) return line;
      }
      ++at;
    }
    return std::nullopt;
  }

  // The boundary line at `start`, the beginning of a line: of the innermost open multipart that it fits.
  std::optional<BoundaryLine> boundaryLineAt(std::size_t start) const {
    if (waiting_ == 0 || message_.substr(start, 2) != "--") return std::nullopt;
    const auto longest = message_.substr(start, limits_.boundaryBytes + 8);
    const auto newline = longest.find('\n');
    if (newline == longest.npos && start + longest.size() < message_.size()) return std::nullopt;
    const auto line = longest.substr(0, newline);
    auto text = line.substr(2);
    text = text.substr(0, text.find_last_not_of(" \t\r") + 1);
    for (auto level = chain_.size(); level-- > 0;) {
      const auto& boundary = chain_[level].boundary;
      if (boundary.empty() || !text.starts_with(boundary)) continue;
      const auto rest = text.substr(boundary.size());
      if (!rest.empty() && rest != "--") continue;
      const auto textEnd = start + line.size() - (line.ends_with('\r') ? 1 : 0);
      return BoundaryLine{.level = level,
                          .closes = !rest.empty(),
                          .start = start,
                          .textEnd = textEnd,
                          .lineEnd = newline == longest.npos ? message_.size() : start + newline + 1};
    }
    return std::nullopt;
  }

  std::size_t lineEndAfter(std::size_t at) {
    const auto newline = find('\n', at);
    return newline == message_.size() ? newline : newline + 1;
  }

  // Where the next `wanted` is, or the message's end; tells the owner of the bytes how far the scan has come.
  std::size_t find(char wanted, std::size_t at) {
    while (at < message_.size()) {
      const auto stop = std::min(message_.size(), (at / behindStep + 1) * behindStep);
      if (const auto* hit = std::memchr(message_.data() + at, wanted, stop - at)) {
        return static_cast<std::size_t>(static_cast<const char*>(hit) - message_.data());
      }
      at = stop;
      if (behind_ && at > told_) behind_(told_ = at);
    }
    return message_.size();
  }

  std::string_view message_;
  const Behind& behind_;
  const ScanLimits& limits_;
  std::vector<Part> parts_;
  std::vector<OpenPart> chain_;     // from the root to the part that is being read
  std::size_t waiting_ = 0;         // parts in the chain with a boundary
  std::vector<ContentType> types_;  // of the first parts
  ContentType type_;                // of one that is not among them
  std::vector<bool> digests_;       // which parts are multipart/digest
  std::size_t told_ = 0;
  Doubt doubt_;
};

}  // namespace

PartTree scan(std::string_view message, const Behind& behind, const ScanLimits& limits) {
  return Scanner{message, behind, limits}.run();
}

}  // namespace quillfile::mime

#include "hosts/mailbox/mime/splice.h"

#include <algorithm>

#include "hosts/mailbox/mime/header_value.h"

namespace quillfile::mime {
namespace {

constexpr std::string_view contentFieldsBegin = "Content-";

bool beginsWith(std::string_view name, std::string_view beginning) {
  return equalWords(name.substr(0, beginning.size()), beginning);
}

// Adds a piece; neighbouring literals become one.
void append(Pieces& pieces, Piece piece) {
  auto* bytes = std::get_if<std::string>(&piece);
  if (bytes && bytes->empty()) return;
  auto* last = pieces.empty() ? nullptr : std::get_if<std::string>(&pieces.back());
  if (bytes && last) {
    *last += *bytes;
  } else {
    pieces.push_back(std::move(piece));
  }
}

std::string_view subtype(BodyFormat format) { return format == BodyFormat::html ? "html" : "plain"; }

std::string fieldsOf(const NewPart& part, bool base64, std::string_view lineEnd) {
  const auto named = [&](std::string_view parameter) {
    return part.name.empty() ? std::string{} : encodedParameter(parameter, part.name, lineEnd);
  };
  const auto field = [&](std::string_view name, const std::string& value) {
    return std::string{name} + ": " + value + std::string{lineEnd};
  };
  auto fields = field("Content-Type", part.type + named("name")) +
                field("Content-Transfer-Encoding", base64 ? "base64" : "8bit") +
                field("Content-Disposition", "attachment" + named("filename"));
  if (!part.description.empty())
    fields += field("Content-Description", encodedText(part.description, lineEnd));
  return fields;
}

}  // namespace

Splice::Splice(const Edit& edit)
    : edit_{edit}, tree_{edit.tree_}, plan_{choosePlan()}, gone_{runsThatGo()}, lineEnd_{tree_.lineEnd()} {
  for (const auto& [part, text] : edit_.texts_) {
    if (!edit_.removes(part)) texts_.emplace(part, rewrittenTextPart(tree_, part, text));
  }
  if (plan_ == Plan::is_extended) prependToMixed();
  if (plan_ == Plan::is_replaced) replaceRoot();
  if (plan_ == Plan::is_wrapped) beginWrap();
  for (const auto& [part, text] : texts_) changeText(part, text);
  removeParts();
  closeEmptied();
  if (plan_ == Plan::is_extended) appendToMixed();
  if (plan_ == Plan::is_wrapped) endWrap();
  changeHeader();
  changes_.insert(changes_.begin(), headerChanges_.begin(), headerChanges_.end());
  std::stable_sort(changes_.begin(), changes_.end(),
                   [](const Change& a, const Change& b) { return a.cut.begin < b.cut.begin; });
}

Splice::Plan Splice::choosePlan() const {
  if (edit_.removed_.contains(0)) return Plan::is_replaced;
  if (edit_.bodies_.empty() && edit_.added_.empty()) return Plan::stays;
  const bool mixed = tree_[0].kind == PartKind::multipart && tree_.type(0).is("multipart/mixed");
  return mixed ? Plan::is_extended : Plan::is_wrapped;
}

std::vector<Range> Splice::runsThatGo() const {
  std::vector<Range> runs;
  for (const auto part : edit_.removed_) {  // ascending, as the parts are
    if (part == 0 || edit_.removes(tree_[part].parent)) continue;
    const auto whole = tree_[part].whole();
    if (!runs.empty() && runs.back().end == whole.begin) {
      runs.back().end = whole.end;
    } else {
      runs.push_back(whole);
    }
  }
  return runs;
}

void Splice::prependToMixed() {
  if (edit_.bodies_.empty()) return;
  const auto children = tree_.children(0);
  const auto at = children.empty() ? tree_[0].closing.begin : tree_[children.front()].opening.begin;
  auto bodies = newParts(edit_.bodies_, {}, boundaryOf(0));
  append(bodies, lineEndFor(at));
  changes_.push_back({{at, at}, std::move(bodies)});
}

// After all other changes, since some of them close multiparts at the same place.
void Splice::appendToMixed() {
  if (edit_.added_.empty()) return;
  const auto closing = tree_[0].closing;
  auto added = newParts({}, edit_.added_, boundaryOf(0));
  const bool goesBefore = !gone_.empty() && gone_.back().end == closing.begin;  // and has its guard
  if (!goesBefore) changes_.push_back({{closing.begin, closing.begin}, guardFor(closing.begin, lineEnd_)});
  append(added, closing.empty() ? lineEnd_ + "--" + boundaryOf(0) + "--" + lineEnd_
                                : lineEndIfMissing(closing.begin));
  changes_.push_back({{closing.begin, closing.begin}, std::move(added)});
}

std::string Splice::boundaryOf(PartIndex multipart) const {
  return std::string{trimmed(*tree_.type(multipart).parameters.bytes("boundary"))};
}

void Splice::beginWrap() {
  auto opening = newParts(edit_.bodies_, {}, edit_.boundary_);
  append(opening, lineEnd_ + "--" + edit_.boundary_ + lineEnd_ + contentFields() + lineEnd_);
  const auto at = tree_[0].body.begin;
  changes_.push_back({{at, at}, std::move(opening)});
  becomeMixed();
}

void Splice::endWrap() {
  const auto at = tree_[0].body.end;
  auto closing = newParts({}, edit_.added_, edit_.boundary_);
  append(closing, lineEnd_ + "--" + edit_.boundary_ + "--" + lineEnd_);
  if (!tree_[0].body.empty()) changes_.push_back({{at, at}, guardFor(at, lineEnd_)});
  changes_.push_back({{at, at}, std::move(closing)});
}

void Splice::replaceRoot() {
  Pieces body;
  if (edit_.bodies_.size() + edit_.added_.size() > 1 || !edit_.added_.empty()) {
    body = newParts(edit_.bodies_, edit_.added_, edit_.boundary_);
    append(body, lineEnd_ + "--" + edit_.boundary_ + "--" + lineEnd_);
    becomeMixed();
  } else {
    const auto text = edit_.bodies_.empty()
                          ? newTextPart("plain", {}, lineEnd_)
                          : newTextPart(subtype(edit_.bodies_[0].first), edit_.bodies_[0].second, lineEnd_);
    append(body, text.body);
    cutFields(0, contentFieldsBegin, headerChanges_);
    newFields_ += text.fields;
  }
  changes_.push_back({tree_[0].body, std::move(body)});
}

void Splice::becomeMixed() {
  cutFields(0, contentFieldsBegin, headerChanges_);
  newFields_ +=
      "Content-Type: multipart/mixed;" + lineEnd_ + " boundary=\"" + edit_.boundary_ + "\"" + lineEnd_;
}

void Splice::changeText(PartIndex part, const TextPart& text) {
  const auto& range = tree_[part];
  const bool fieldsMove = part == 0 && plan_ == Plan::is_wrapped;  // see contentFields
  if (!text.fields.empty() && !fieldsMove) {
    auto& changes = part == 0 ? headerChanges_ : changes_;
    cutFields(part, "Content-Type", changes);
    cutFields(part, "Content-Transfer-Encoding", changes);
    if (part == 0) {
      newFields_ += text.fields;
    } else {
      changes.push_back({{range.header.end, range.header.end}, {text.fields}});
    }
  }
  if (part != 0) separate(part, changes_);
  Pieces body;
  append(body, text.body + lineEndFor(range.body.end));
  changes_.push_back({range.body, std::move(body)});
}

// What goes takes the line end before its first boundary line along; where the boundary line after it has
// none of its own, that line end has to stay.
void Splice::removeParts() {
  for (const auto& run : gone_) {
    const auto added = hasLineEnd(run.begin) ? lineEndFor(run.end) : std::string{};
    const auto next =
        addsPartsAt(run.end) ? lineEnd_ : added + std::string{tree_.message().substr(run.end, 1)};
    auto instead = guardFor(run.begin, next);
    append(instead, added);
    changes_.push_back({run, std::move(instead)});
  }
}

// A multipart that an outer boundary line ended, without a closing line of its own, gets one when its last
// part goes: else not a boundary line would be left to tell that it is a multipart.
void Splice::closeEmptied() {
  for (PartIndex part = 0; part < tree_.size() && !edit_.removed_.empty(); ++part) {
    const auto closing = tree_[part].closing;
    if (tree_[part].kind != PartKind::multipart || !closing.empty() || edit_.removes(part)) continue;
    const auto children = tree_.children(part);
    const bool emptied = std::all_of(children.begin(), children.end(),
                                     [&](PartIndex child) { return edit_.removed_.contains(child); });
    if (!emptied) continue;
    changes_.push_back({closing, {lineEnd_ + "--" + boundaryOf(part) + "--" + lineEndFor(closing.begin)}});
  }
}

void Splice::changeHeader() {
  const bool isNewMime = !newFields_.empty() && !tree_.header(0).field("MIME-Version");
  if (isNewMime) newFields_.insert(0, "MIME-Version: 1.0" + lineEnd_);
  for (const auto& [name, value] : edit_.headers_) setField(name, value);
  newFields_ += edit_.fields_;
  if (changes_.empty() && newFields_.empty()) return;
  const auto end = tree_[0].header.end;
  const auto block = tree_.header(0).block();
  Pieces fields;
  const bool lastFieldGoes = std::any_of(headerChanges_.begin(), headerChanges_.end(),
                                         [&](const Change& change) { return change.cut.end == end; });
  if (!block.empty() && !block.ends_with('\n') && !lastFieldGoes) append(fields, lineEnd_);
  append(fields, newFields_);
  headerChanges_.push_back({{end, end}, std::move(fields)});
  separate(0, headerChanges_);
}

void Splice::setField(const std::string& name, TextView value) {
  const auto field = value.empty() ? std::string{} : name + ": " + encodedText(value, lineEnd_) + lineEnd_;
  const auto before = headerChanges_.size();
  cutFields(0, name, headerChanges_);
  if (headerChanges_.size() == before) {
    newFields_ += field;
  } else {
    append(headerChanges_[before].pieces, field);
  }
}

// Cuts the fields of a part's header whose names begin like that; "Content-" stands for all of its kind.
void Splice::cutFields(PartIndex part, std::string_view beginning, std::vector<Change>& changes) const {
  auto rest = tree_.header(part).block();
  while (const auto field = takeField(rest)) {
    const bool meant =
        beginning.ends_with('-') ? beginsWith(field->name, beginning) : equalWords(field->name, beginning);
    const auto begin = static_cast<std::size_t>(field->whole.data() - tree_.message().data());
    if (meant) changes.push_back({{begin, begin + field->whole.size()}, {}});
  }
}

// Puts in the blank line between header and body where the original has none.
void Splice::separate(PartIndex part, std::vector<Change>& changes) const {
  const auto end = tree_[part].header.end;
  if (tree_[part].body.begin == end) changes.push_back({{end, end}, {lineEnd_}});
}

// The fields that move from the message's header into the first part's when the message is wrapped.
std::string Splice::contentFields() const {
  const auto text = texts_.find(0);
  auto fields = text == texts_.end() ? std::string{} : text->second.fields;
  const bool replaced = !fields.empty();
  auto rest = tree_.header(0).block();
  while (const auto field = takeField(rest)) {
    const bool isReplaced = replaced && (equalWords(field->name, "Content-Type") ||
                                         equalWords(field->name, "Content-Transfer-Encoding"));
    if (beginsWith(field->name, contentFieldsBegin) && !isReplaced) {
      fields += field->whole;
      if (!fields.ends_with('\n')) fields += lineEnd_;
    }
  }
  return fields;
}

// The line end that has to stand before what follows at `at`, or after the run of removed parts there: none
// where that has its own, as parts that are added have, or where the message ends. A run that begins with a
// line end sees to it itself.
std::string Splice::lineEndFor(std::size_t at) const {
  const auto run = std::ranges::upper_bound(gone_, at, {}, &Range::end);
  if (run != gone_.end() && run->begin <= at) {
    if (run->begin == at && hasLineEnd(at)) return {};
    at = run->end;
  }
  return addsPartsAt(at) ? std::string{} : lineEndIfMissing(at);
}

bool Splice::addsPartsAt(std::size_t at) const {
  return plan_ == Plan::is_extended && !edit_.added_.empty() && at == tree_[0].closing.begin;
}

// A CR that stands alone before `at` would become a part of a line end that comes to stand behind it, of a
// "\n": that gets a CR of its own.
Pieces Splice::guardFor(std::size_t at, std::string_view next) const {
  Pieces guard;
  if (at > 0 && tree_.message()[at - 1] == '\r' && next.starts_with('\n')) append(guard, std::string{"\r"});
  return guard;
}

bool Splice::hasLineEnd(std::size_t at) const {
  return at < tree_.message().size() && (tree_.message()[at] == '\r' || tree_.message()[at] == '\n');
}

std::string Splice::lineEndIfMissing(std::size_t at) const {
  return at < tree_.message().size() && !hasLineEnd(at) ? lineEnd_ : std::string{};
}

// Boundary line, header and body of each; a line end stands before each boundary line and none after the last
// body.
Pieces Splice::newParts(const Bodies& bodies, const std::vector<NewPart>& added,
                        std::string_view boundary) const {
  const auto opening = lineEnd_ + "--" + std::string{boundary} + lineEnd_;
  Pieces pieces;
  for (const auto& [format, text] : bodies) {
    const auto part = newTextPart(subtype(format), text, lineEnd_);
    append(pieces, opening + part.fields + lineEnd_ + part.body);
  }
  for (const auto& part : added) {
    const bool base64 = part.type != "message/rfc822";
    append(pieces, opening + fieldsOf(part, base64, lineEnd_) + lineEnd_);
    append(pieces, StreamedContent{.content = part.content, .base64 = base64, .lineEnd = lineEnd_});
  }
  return pieces;
}

}  // namespace quillfile::mime

#include "hosts/mailbox/outlook/rewrite.h"

#include <algorithm>
#include <map>

#include "hosts/mailbox/outlook/container.h"
#include "hosts/mailbox/outlook/part_insertion.h"
#include "hosts/mailbox/outlook/second_reading.h"
#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {
namespace {

class Rewriting {
 public:
  Rewriting(const std::shared_ptr<const Message>& message, const ItemChanges& changes,
            const std::vector<RemovedPart>& removedBefore)
      : message_(message),
        tree_(message->tree()),
        changes_(changes),
        removedBefore_(removedBefore),
        edit_(tree_) {
    for (const auto& field : tree_.header(0).fields(removedPartField)) {
      const auto told = removedParts(mime::Header{field.whole});
      if (told.empty()) continue;
      const auto begin = static_cast<std::size_t>(field.whole.data() - tree_.message().data());
      told_.emplace(told.front().path,
                    std::pair{told.front(), mime::Range{begin, begin + field.whole.size()}});
    }
  }

  Rewrite run(ItemBodies& bodies) {
    requireChangeable();
    for (const auto& taken : changes_.taken) take(taken);
    addAll();
    if (leavesNothing(bodies)) edit_.addBody(mime::BodyFormat::plain, u"");
    bodies.apply(edit_, splices_);
    auto pieces = std::make_shared<const mime::Pieces>(spliced(edit_.pieces(), splices_));
    const auto cuts = cutsWith(edit_.cuts(), splices_);
    result_.content = [message = message_, pieces](const Sink& sink) {
      mime::write(message->bytes(), *pieces, sink, message->behind({0, message->bytes().size()}));
    };
    result_.check = [message = message_, pieces, cuts](const MessageFile& rewritten) {
      return mime::check(message->bytes(), *pieces, cuts, rewritten.bytes(),
                         message->behind({0, message->bytes().size()}), rewritten.behind());
    };
    return std::move(result_);
  }

 private:
  // A message in a folder that is signed, encrypted or doubted keeps every byte, a note's place too. And with
  // its containers opened it takes the place of the stored one only when nothing is lost by that.
  void requireChangeable() const {
    if (message_->stored().file() == nullptr) return;
    if (const auto& reason = message_->whyNothingMayGo(); !reason.empty())
      throw failure("Could not change the message: " + toUtf8(reason));
    if (&message_->stored() != message_.get() && !opensTheSameAgain(*message_))
      throw failure("Could not change the message: what is inside it does not read the same a second time");
  }

  void take(const TakenAttachment& taken) {
    const auto part = taken.source->part();
    if (!part) throw failure("Could not take out what is no part of the message");
    edit_.remove(*part);
    if (!taken.file) return;
    result_.removed.push_back({taken.file, secondReading(message_, *part)});
    RemovedPart record{taken.file->asked, {}, 1, {}};  // the whole message: behind the text in its place
    if (*part != 0) {
      const auto& [boundary, children, places] = siblings(tree_[*part].parent);
      const auto index = std::lower_bound(children.begin(), children.end(), *part) - children.begin();
      record.boundary = boundary;
      record.at = places[static_cast<std::size_t>(index)];
    }
    auto lines = tree_.header(*part).block();
    while (const auto field = mime::takeField(lines)) {
      // Of a message that is all one attachment, the lines about the attachment alone.
      const bool about = *part != 0 || mime::lowerCase(field->name).starts_with("content-");
      if (about) record.header += field->whole;
    }
    edit_.addField(fieldOf(record, tree_.lineEnd()));
  }

  // Those that were parts of this message first, in the order of their old places.
  void addAll() {
    std::vector<const AddedAttachment*> back, others;
    for (const auto& added : changes_.added) (added.was ? back : others).push_back(&added);
    std::stable_sort(back.begin(), back.end(),
                     [](const auto* a, const auto* b) { return a->was->at < b->was->at; });
    for (const auto* added : back)
      if (!putBack(*added)) others.push_back(added);
    for (const auto* added : others) edit_.add(newPart(*added));
  }

  static mime::NewPart newPart(const AddedAttachment& added) {
    const auto& source = *added.source;
    mime::NewPart part;
    part.name = source.fileName();
    part.type = source.mediaType();
    if (source.displayName() != part.name) part.description = source.displayName();
    part.content = source.content();
    if (added.was) {
      const mime::Header header{added.was->header};
      const auto type = mime::contentType(header);
      if (header.field("Content-Type")) part.type = type.type + "/" + type.subtype;
      part.name = mime::givenName(header);
    }
    return part;
  }

  bool putBack(const AddedAttachment& added) {
    forget(*added.was);
    const auto known = multiparts_.find(added.was->boundary);
    const auto multipart =
        known != multiparts_.end() ? known->second : multipartOf(tree_, added.was->boundary);
    multiparts_.emplace(added.was->boundary, multipart);
    if (multipart == mime::noPart) return false;
    const auto& places = siblings(multipart, added.was->boundary).places;
    const auto before = static_cast<std::size_t>(
        std::lower_bound(places.begin(), places.end(), added.was->at) - places.begin());
    splices_.push_back(insertion(tree_, multipart, before, added.was->header, *added.source));
    return true;
  }

  // The message's header need not tell of the part any more.
  void forget(const RemovedPart& part) {
    const auto [first, last] = told_.equal_range(part.path);
    const auto field =
        std::find_if(first, last, [&](const auto& entry) { return entry.second.first == part; });
    if (field == last) return;
    splices_.push_back({field->second.second, {}});
    told_.erase(field);
  }

  // The parts of a multipart, ascending, and where each once stood.
  struct Siblings {
    std::string boundary;
    std::vector<mime::PartIndex> children;
    std::vector<std::uint32_t> places;
  };
  const Siblings& siblings(mime::PartIndex multipart) {
    return siblings(multipart, boundaryOf(tree_, multipart));
  }
  const Siblings& siblings(mime::PartIndex multipart, const std::string& boundary) {
    const auto known = siblings_.find({multipart, boundary});
    if (known != siblings_.end()) return known->second;
    auto children = tree_.children(multipart);
    auto places = oldPlaces(children.size(), boundary, removedBefore_);
    return siblings_
        .emplace(std::pair{multipart, boundary}, Siblings{boundary, std::move(children), std::move(places)})
        .first->second;
  }

  // A multipart must have a part.
  bool leavesNothing(ItemBodies& bodies) const {
    const auto children = tree_.children(0);
    return tree_[0].kind == mime::PartKind::multipart && !bodies.changed() && changes_.added.empty() &&
           std::all_of(children.begin(), children.end(),
                       [&](mime::PartIndex child) { return edit_.removes(child); });
  }

  const std::shared_ptr<const Message>& message_;
  const mime::PartTree& tree_;
  const ItemChanges& changes_;
  const std::vector<RemovedPart>& removedBefore_;
  mime::Edit edit_;
  std::vector<Splice> splices_;
  std::multimap<std::string, std::pair<RemovedPart, mime::Range>> told_;  // by path: the header's own fields
  std::map<std::string, mime::PartIndex> multiparts_;                     // by boundary
  std::map<std::pair<mime::PartIndex, std::string>, Siblings> siblings_;
  Rewrite result_;
};

}  // namespace

Rewrite rewrite(const std::shared_ptr<const Message>& message, ItemBodies& bodies, const ItemChanges& changes,
                const std::vector<RemovedPart>& removedBefore) {
  return Rewriting{message, changes, removedBefore}.run(bodies);
}

}  // namespace quillfile::mailbox

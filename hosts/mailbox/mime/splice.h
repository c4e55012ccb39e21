// Splice: an edit worked out as changes of the original, each a range that goes and the pieces that take its
// place.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/mailbox/mime/edit.h"
#include "hosts/mailbox/mime/text_part.h"

namespace quillfile::mime {

struct Change {
  Range cut;      // empty where something is only put in
  Pieces pieces;  // in its place
};

class Splice {
 public:
  explicit Splice(const Edit& edit);

  // Ascending by where they begin. A change may begin inside the cut of an earlier one.
  const std::vector<Change>& changes() const { return changes_; }

 private:
  using Bodies = std::vector<std::pair<BodyFormat, Text>>;
  // What becomes of the message's own body as a whole: it stays, it is a mixed one and gets parts, it becomes
  // the first part of a mixed one, something else takes its place.
  enum class Plan { stays, is_extended, is_wrapped, is_replaced };
  Plan choosePlan() const;
  std::vector<Range> runsThatGo() const;

  void prependToMixed();
  void appendToMixed();
  void beginWrap();
  void endWrap();
  void replaceRoot();
  void changeText(PartIndex part, const TextPart& text);
  void removeParts();
  void closeEmptied();
  void changeHeader();
  void setField(const std::string& name, TextView value);

  void cutFields(PartIndex part, std::string_view beginning, std::vector<Change>& changes) const;
  void separate(PartIndex part, std::vector<Change>& changes) const;
  std::string contentFields() const;
  void becomeMixed();
  std::string boundaryOf(PartIndex multipart) const;
  std::string lineEndFor(std::size_t boundaryLine) const;
  std::string lineEndIfMissing(std::size_t at) const;
  bool hasLineEnd(std::size_t at) const;
  bool addsPartsAt(std::size_t at) const;
  Pieces guardFor(std::size_t at, std::string_view next) const;
  Pieces newParts(const Bodies& bodies, const std::vector<NewPart>& added, std::string_view boundary) const;

  const Edit& edit_;
  const PartTree& tree_;
  const Plan plan_;
  const std::vector<Range> gone_;  // the removed parts, neighbours as one; ascending
  std::string lineEnd_;
  std::map<PartIndex, TextPart> texts_;
  std::vector<Change> changes_;
  std::vector<Change>
      headerChanges_;      // of the message's own header; they come before others at the same place
  std::string newFields_;  // for the end of that header
};

}  // namespace quillfile::mime

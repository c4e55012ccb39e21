// QuillfileExtended: the reader of the link notes that the saving engine leaves in bodies. It finds them,
// cuts the path out of them, puts the file back into the item, and cuts the note out of the body.
//
// A note is the phrase "Attachment saved to" (a line break may stand for a blank in it), then "file:///" and
// the path, then the end mark: a quotation mark and ">" in HTML, ">" in plain and rich text. Positions start
// at 1, 0 is "not found". No procedure throws.
#pragma once

#include <optional>

#include "core/module/procedure.h"
#include "core/module/trace.h"
#include "core/platform/letter_case.h"
#include "core/platform/path_rules.h"
#include "core/platform/system.h"

namespace quillfile {

struct LinkPorts {
  EngineServices& services;
  EngineLog& log;
  LetterCase& letters;
  LinkedFiles& linkedFiles;
  PathRules paths;
};

// What stands in a text from position `begin` up to `end`.
struct Stretch {
  Position begin, end;
};

enum class CompareMode : std::int32_t { exact = 0, ignoring_case = 1 };

class QuillfileExtended {
 public:
  explicit QuillfileExtended(const LinkPorts& ports) : ports_(ports), trace_(ports.log) {}

  // Where `phrase` stands in `text` at or after `start`, also when a line break (CR LF) takes the place of a
  // blank in it; `keyword` is its first word. An unbroken phrase wins over an earlier broken one. With
  // `returnEnd` the position behind the phrase, which for a broken one is one greater: the line break has two
  // characters.
  Position InStrIgnoreLfCr(Position start, TextView text, TextView keyword, TextView phrase,
                           CompareMode compare, bool returnEnd);

  // The next link at or after `position` in a body of the format "HTML", "TEXT" or "RTF". True when there is
  // one: `position` is then where to go on and `fileName` the path in the note, which may be empty. In a body
  // of any other format the path is cut out, by `fieldStyle` from a field's code, and the answer is still
  // False.
  bool CheckForLink(TextView body, Position& position, TextView format, Text& fileName, bool fieldStyle);

  // `body` without its first note and the paragraph around it; empty when nothing was erased. A note in plain
  // text is its caller's to erase.
  Text EraseString(TextView body, TextView format);
  // What EraseString leaves out; none where it answers with an empty text because it found nothing to erase.
  // For whoever knows that no unbroken phrase stands before `start`.
  std::optional<Stretch> noteToErase(TextView body, TextView format, Position start = 1);
  LetterCase& letters() const { return ports_.letters; }

  // The first phrase at or after `start` that no line break divides; 0 when there is none.
  Position findUnbrokenPhrase(TextView body, Position start);

  // The path that a note means: "%20" in it is a blank, but where the path rules allow a name to hold it and
  // a file of that very name is there.
  Text linkedPath(const Ref<SafeItem>& item, TextView fileName);

  // Attaches the file that a note names to the item. False when it is not there.
  bool TestAttachmentLink(const Ref<SafeItem>& item, TextView fileName);

  // Whether the file that a note in `item` names is there; an error counts as no.
  bool FileExists(const Ref<SafeItem>& item, TextView path);

  // What follows the last "/", or when there is none the last "\"; the whole path when there is neither.
  static Text FileNameFromPath(TextView path);

 private:
  Position find(TextView text, TextView wanted, Position start, CompareMode compare);
  Position findPhrase(TextView body, Position start);
  bool checkHtml(TextView body, Position& position, Text& path);
  bool checkText(TextView body, Position& position, TextView format, Text& path);
  void checkField(TextView body, Position& position, Text& path, bool fieldStyle);
  std::optional<Stretch> noteInHtml(TextView body, Position found);
  std::optional<Stretch> noteInRtf(TextView body, Position start);
  Position endOfRtfNote(TextView body, Position start);

  LinkPorts ports_;
  Trace trace_;
};

}  // namespace quillfile

#include "hosts/mailbox/outlook/link_notes.h"

#include <map>

#include "hosts/mailbox/outlook/plain_text.h"

namespace quillfile::mailbox {
namespace {

constexpr TextView phrase = u"Attachment saved to";
constexpr TextView marker = u"file:///";
constexpr TextView lineEnd = u"\r\n";

// Where a note's text, "Attachment saved to <link>", stands in a plain text.
struct Note {
  std::size_t begin, end;
  TextView link;
};

// The next note at or after `from`; its end is npos where there is none.
Note nextNote(TextView text, std::size_t from) {
  constexpr TextView opening = u"Attachment saved to <file:///";
  const auto begin = text.find(opening, from);
  if (begin == TextView::npos) return {begin, begin, {}};
  const auto close = text.find(u'>', begin);
  if (close == TextView::npos) return {close, close, {}};
  const auto link = begin + opening.size() - marker.size();
  return {begin, close + 1, text.substr(link, close - link)};
}

using Count = std::map<TextView, std::size_t>;

Count counted(const std::vector<Text>& links) {
  Count count;
  for (const auto& link : links) ++count[link];
  return count;
}

// The links of `of` that `without` does not have, each as often as it is missing there.
std::vector<Text> missing(const std::vector<Text>& of, const std::vector<Text>& without) {
  auto count = counted(without);
  std::vector<Text> result;
  for (const auto& link : of) {
    auto& left = count[link];
    if (left > 0) {
      --left;
    } else {
      result.push_back(link);
    }
  }
  return result;
}

// Whether the last note of an HTML text stands at its end, with nothing but other notes and closing tags
// behind it.
bool notesAtEnd(TextView html) {
  const auto last = html.rfind(phrase);
  if (last == TextView::npos) return true;
  auto rest = html.substr(last);
  const auto end = rest.find(u"</p>");
  if (end == TextView::npos) return false;
  rest.remove_prefix(end);
  bool inTag = false;
  for (const char16_t unit : rest) {
    if (unit == u'<') {
      inTag = true;
    } else if (unit == u'>') {
      inTag = false;
    } else if (!inTag && unit > u' ') {
      return false;
    }
  }
  return true;
}

}  // namespace

std::vector<Text> linksInHtml(TextView html) {
  std::vector<Text> links;
  for (auto at = html.find(phrase); at != TextView::npos; at = html.find(phrase, at)) {
    at += phrase.size();
    const auto next = html.find(phrase, at);
    const auto begin = html.find(marker, at);
    if (begin == TextView::npos) break;
    if (begin > next) continue;
    const auto end = html.find_first_of(u"\"<>", begin);
    if (end == TextView::npos) break;
    links.emplace_back(html.substr(begin, end - begin));
  }
  return links;
}

std::vector<Text> linksInPlainText(TextView text) {
  std::vector<Text> links;
  for (auto note = nextNote(text, 0); note.end != TextView::npos; note = nextNote(text, note.end))
    links.emplace_back(note.link);
  return links;
}

namespace {

// Notes that stand together, with nothing but line ends between and around them, are one group: each note of
// it came with two line ends, wherever the module put them, so the group leaves what there is beyond these.
template <class Wanted>
std::vector<Hunk> groupsOfNotes(TextView text, Wanted&& wanted) {
  std::vector<Hunk> groups;
  std::size_t lineEnds = 0, notes = 0;  // of the last group
  const auto isLineEnd = [&](std::size_t at) { return text.substr(at, 2) == lineEnd; };
  const auto closeGroup = [&] {
    for (std::size_t i = 2 * notes; i < lineEnds; ++i) groups.back().replacement += lineEnd;
    lineEnds = notes = 0;
  };
  for (auto note = nextNote(text, 0); note.end != TextView::npos; note = nextNote(text, note.end)) {
    if (!wanted(note.link)) continue;
    const std::size_t kept = groups.empty() ? 0 : groups.back().end;
    std::size_t begin = note.begin;
    std::size_t before = 0;
    while (begin >= kept + 2 && isLineEnd(begin - 2)) begin -= 2, ++before;
    if (begin != kept || notes == 0) {
      closeGroup();
      groups.push_back({begin, begin, {}, {}});
    }
    lineEnds += before;
    ++notes;
    auto& end = groups.back().end = note.end;
    while (isLineEnd(end)) end += 2, ++lineEnds;
  }
  closeGroup();
  return groups;
}

}  // namespace

std::vector<Hunk> notesToDrop(TextView text, const Links& links) {
  return groupsOfNotes(text, [&](TextView link) { return links.contains(link); });
}

std::vector<Hunk> rtfNotesToDrop(TextView rtf, const Links& links) {
  constexpr TextView opening = u"\\par\r\n", closing = u"\\par";
  std::vector<Hunk> hunks;
  for (auto note = nextNote(rtf, 0); note.end != TextView::npos; note = nextNote(rtf, note.end)) {
    const std::size_t kept = hunks.empty() ? 0 : hunks.back().end;
    const bool alone = note.begin >= kept + opening.size() &&
                       rtf.substr(note.begin - opening.size(), opening.size()) == opening &&
                       startsWith(rtf.substr(note.end), closing);
    if (alone && links.contains(note.link))
      hunks.push_back({note.begin - opening.size(), note.end + closing.size(), {}, {}});
  }
  return hunks;
}

namespace {

// Each of these links goes as often as it is named.
std::vector<Hunk> notesToDropOnce(TextView text, const std::vector<Text>& links) {
  auto wanted = counted(links);
  return groupsOfNotes(text, [&](TextView link) {
    const auto found = wanted.find(link);
    return found != wanted.end() && found->second > 0 && found->second-- > 0;
  });
}

NotesChange notesChange(const std::vector<Text>& had, const std::vector<Text>& has, bool atEnd) {
  return {missing(had, has), missing(has, had), atEnd};
}

}  // namespace

Text withoutNotes(TextView text, const std::vector<Text>& links) {
  return applied(text, notesToDropOnce(text, links));
}

NotesChange notesChangeInHtml(const TextChange& html) {
  const auto had = linksInHtml(html.original());
  return notesChange(had, linksInHtml(html.current()), notesAtEnd(html.current()));
}

NotesChange notesChangeInText(TextView before, TextView after) {
  return notesChange(linksInPlainText(before), linksInPlainText(after), true);
}

void follow(TextChange& plain, const NotesChange& notes) {
  std::size_t gone = 0;
  for (const auto& hunk : notesToDropOnce(plain.current(), notes.went)) {
    plain.replace(hunk.begin - gone, hunk.end - gone, hunk.replacement);
    gone += hunk.end - hunk.begin - hunk.replacement.size();
  }
  Text come;
  for (const auto& link : notes.came) {
    const auto note = fill(u"Attachment saved to <{}>", link);
    if (notes.atEnd) {
      come.append(lineEnd).append(lineEnd).append(note);
    } else {
      come.append(note).append(lineEnd).append(lineEnd);
    }
  }
  const auto at = notes.atEnd ? plain.current().size() : 0;
  plain.replace(at, at, come);
}

Text withPlainNotes(TextView html) {
  constexpr TextView opening = u"<p>Attachment saved to <a href=\"";
  Text result;
  result.reserve(html.size());
  std::size_t kept = 0;
  for (auto at = html.find(opening); at != TextView::npos; at = html.find(opening, at + 1)) {
    const auto begin = at + opening.size();
    const auto link = html.substr(begin, html.find(u'"', begin) - begin);
    const auto rest = fill(u"\">{}</a></p>", link);
    if (html.substr(begin + link.size(), rest.size()) != rest) continue;
    result.append(html.substr(kept, at - kept));
    const auto blanksKept = replaceAll(replaceAll(textToHtml(link), u" ", u"&#32;"), u"\t", u"&#9;");
    result += fill(u"<p>Attachment saved to &lt;{}&gt;</p>", blanksKept);
    kept = begin + link.size() + rest.size();
  }
  result.append(html.substr(kept));
  return result;
}

}  // namespace quillfile::mailbox

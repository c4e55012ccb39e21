// PathRules: everything that differs between one system's paths and another's, as one value from the host.
#pragma once

#include "core/text/text.h"

namespace quillfile {

struct PathRules {
  TextView separator;           // u"\\" or u"/", always one character
  TextView otherSeparator;      // the other system's, which is replaced in folder names
  TextView invalidInPath;       // what StripInvalidCharacters replaces, in this order
  TextView longPathPrefix;      // put before a path when its times are changed; empty where none is needed
  bool drives = false;          // whether "C:" may begin a path
  TextView root;                // the folder that is always there
  TextView linkPrefix;          // what stands before a path in a link's text
  bool percentInNames = false;  // whether "%20" in a link may also be what a name really holds
  bool caseCounts = false;      // whether "a.pdf" and "A.pdf" are two files

  // The text of the link to `path`, exactly as it stands in a note.
  //   Windows: C:\a b.pdf -> file:///C:\a b.pdf      Linux: /home/u/a b.pdf -> file:///home/u/a b.pdf
  Text linkTo(TextView path) const { return Text{linkPrefix}.append(path); }

  // The path of the text that followed "file:///" in a note; the opposite of linkTo.
  Text pathAfterMarker(TextView rest) const {
    constexpr TextView marker = u"file:///";
    return rest.empty() ? Text{} : Text{marker.substr(linkPrefix.size())}.append(rest);
  }

  static constexpr PathRules windows();
  static constexpr PathRules posix();
};

constexpr PathRules PathRules::windows() {
  return {.separator = u"\\",
          .otherSeparator = u"/",
          .invalidInPath = u"#/:*?<>|\"",
          .longPathPrefix = u"\\\\?\\",
          .drives = true,
          .root = u"C:\\",
          .linkPrefix = u"file:///"};
}

constexpr PathRules PathRules::posix() {
  return {.separator = u"/",
          .otherSeparator = u"\\",
          .invalidInPath = u"#\\:*?<>|\"",
          .longPathPrefix = u"",
          .drives = false,
          .root = u"/",
          .linkPrefix = u"file://",
          .percentInNames = true,
          .caseCounts = true};
}

}  // namespace quillfile

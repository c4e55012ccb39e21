// Names: how the texts of a mail become names of files.
#pragma once

#include "core/platform/path_rules.h"
#include "core/text/text.h"

namespace quillfile {

// Every character that a path cannot hold replaced; a drive colon stays where drives exist.
//   Windows: "C:\Mail:In\a?b.pdf", "-" -> "C:\Mail-In\a-b.pdf"
Text StripInvalidCharacters(const PathRules& paths, TextView name, TextView replacement);

// A name as one path component: "#", "?" and "&" would break a link, a separator would leave the folder.
Text cleanedName(const PathRules& paths, TextView name);

// A cleaned name that is to be a file's as it stands: what no path can hold becomes "-". A link to such a
// file, where there can be one, would end at the ">".   "a<b>.pdf" -> "a-b-.pdf"
Text componentOf(const PathRules& paths, TextView name);

// A name longer than 128 units cut to its first 40 and its extension, for the Save-As form.
Text shortenedForPrompt(TextView name);

// A name in two: up to its last "." and from there on; without a "." the extension is empty.
//   "a.b.pdf" -> {"a.b", ".pdf"}
struct NameParts {
  TextView base;
  TextView extension;
};
NameParts partsOf(TextView name);

}  // namespace quillfile

// Paths, and the notes that the saving engine writes for them, under either system's rules.
#pragma once

#include "tests/fakes/both_rules.h"

namespace quillfile {

struct LinkTexts {
  PathRules rules;

  Text path(TextView name) const { return fill(rules.drives ? u"C:\\Docs\\{}" : u"/docs/{}", name); }
  Text link(TextView name) const { return rules.linkTo(path(name)); }
  Text plainNote(TextView name) const { return fill(u"Attachment saved to <{}>", link(name)); }
  Text rtfNote(TextView name) const { return replaceAll(plainNote(name), u"\\", u"\\\\"); }
  Text htmlNote(TextView name) const {
    return fill(u"<p>Attachment saved to <a href=\"{}\">{}</a></p>", link(name), link(name));
  }
};

}  // namespace quillfile

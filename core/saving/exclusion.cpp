// IsAMatch: whether a name is on a list of patterns.
#include "core/saving/quillfile_routines.h"

namespace quillfile {

bool QuillfileRoutines::IsAMatch(TextView text, TextView list) {
  bool result = false;
  const Procedure about{.name = u".IsAMatch", .wording = {u"Error occurred detecting exclusions: {}", false}};
  procedure(ports_.services, about, [&](Step&) {
    for (const auto& pattern : split(list, u';'))
      if (ports_.utilities.matchText(text, pattern) > 0) result = true;
  });
  return result;
}

}  // namespace quillfile

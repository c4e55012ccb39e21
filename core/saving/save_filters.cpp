#include "core/saving/save_filters.h"

#include "core/settings/number.h"

namespace quillfile {

Text sizeLimitText(TextView stored) { return fill(u"0{}", stored); }

SaveFilters readSaveFilters(const Settings& settings, LetterCase& letters) {
  SaveFilters filters;
  filters.SaveBySubjectEnabled = settings.number(u"SubjectLineEnabled");
  filters.SaveByNameEnabled = settings.number(u"AttachmentNameEnabled");
  filters.SaveByFromEnabled = settings.number(u"EmailFromEnabled");
  filters.SaveBySizeEnabled = settings.number(u"AttachmentSizeEnabled");
  filters.TextSubject = letters.lower(settings.text(u"SubjectLine"));
  filters.TextFileName = letters.lower(settings.text(u"AttachmentName"));
  filters.TextFrom = letters.lower(settings.text(u"EmailFrom"));
  filters.TextFileSize = toNumber(sizeLimitText(settings.stored(u"AttachmentSize").value_or(Text{})));
  return filters;
}

}  // namespace quillfile

// SaveFilters: the four optional filters that say what is worth saving, as CheckSave takes them.
#pragma once

#include <cstdint>

#include "core/platform/letter_case.h"
#include "core/settings/settings.h"
#include "core/text/text.h"

namespace quillfile {

// The largest size limit, in kilobytes: in bytes, a larger one leaves 32 bits.
inline constexpr std::int32_t largestSizeLimit = 2'097'151;

// The number that the setting AttachmentSize is read as; an absent one, or an empty one, is 0.
Text sizeLimitText(TextView stored);

struct SaveFilters {
  std::int32_t SaveBySubjectEnabled = 0;
  Text TextSubject = {};
  std::int32_t SaveByFromEnabled = 0;
  Text TextFrom = {};
  std::int32_t SaveByNameEnabled = 0;
  Text TextFileName = {};
  std::int32_t SaveBySizeEnabled = 0;
  std::int32_t TextFileSize = 0;  // kilobytes; CheckSave makes bytes of it in place
};

// The filters as they are set now, the patterns in lower case. Throws Failure when one cannot be read.
SaveFilters readSaveFilters(const Settings& settings, LetterCase& letters);

}  // namespace quillfile

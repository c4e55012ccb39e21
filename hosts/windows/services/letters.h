// SystemLetters: letter case by the system's tables (LCMapStringEx).
#pragma once

#include "core/platform/letter_case.h"

namespace quillfile::windows {

class SystemLetters final : public LetterCase {
 public:
  Text lower(TextView text) override;
};

}  // namespace quillfile::windows

// Letters: Unicode's simple lower-case mapping, by the C library's own C.UTF-8 tables.
#pragma once

#include <locale.h>

#include <memory>

#include "core/platform/letter_case.h"

namespace quillfile::mailbox {

class UnicodeLetters : public LetterCase {
 public:
  UnicodeLetters();  // throws Failure when the C library has no C.UTF-8 tables
  ~UnicodeLetters() override;
  Text lower(TextView text) override;

 private:
  char16_t lowerUnit(char16_t unit);

  locale_t tables_;
  std::unique_ptr<char16_t[]> lowered_;  // by code unit, made when the first letter beyond ASCII is met
};

}  // namespace quillfile::mailbox

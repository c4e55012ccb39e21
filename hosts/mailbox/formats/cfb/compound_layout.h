// The numbers of a compound file ([MS-CFB] 2.2, 2.6), shared by its writer and its reader.
#pragma once

#include <cstdint>
#include <string_view>

#include "core/text/text.h"

namespace quillfile::formats::cfb {

inline constexpr std::string_view kSignature("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);

inline constexpr std::uint32_t kDifatSector = 0xFFFFFFFC;
inline constexpr std::uint32_t kFatSector = 0xFFFFFFFD;
inline constexpr std::uint32_t kEndOfChain = 0xFFFFFFFE;
inline constexpr std::uint32_t kFree = 0xFFFFFFFF;

inline constexpr std::uint64_t kHeaderSize = 512;
inline constexpr std::uint64_t kHeaderDifat = 109;  // table sectors that the header itself lists
inline constexpr std::uint64_t kEntrySize = 128;    // one entry of the directory
inline constexpr std::uint64_t kSmallSector = 64;
inline constexpr std::uint64_t kCutOff = 4096;  // streams below this live in small sectors
inline constexpr std::uint64_t kLargestFile = 0x7FFFFFFF;

// The order of names in a storage: the shorter first, then by upper-case letters. The names of a .msg are
// ASCII.
inline bool nameBefore(TextView one, TextView two) {
  if (one.size() != two.size()) return one.size() < two.size();
  const auto upper = [](char16_t unit) { return unit >= u'a' && unit <= u'z' ? unit - 32 : int{unit}; };
  for (std::size_t i = 0; i < one.size(); ++i) {
    if (upper(one[i]) != upper(two[i])) return upper(one[i]) < upper(two[i]);
  }
  return false;
}

}  // namespace quillfile::formats::cfb

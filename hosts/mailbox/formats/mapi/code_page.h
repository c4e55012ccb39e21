// Code pages: the numbers by which Windows knows charsets, in .msg and TNEF.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/text/text.h"

namespace quillfile::formats::mapi {

inline constexpr std::uint32_t kUtf8 = 65001;
inline constexpr std::uint32_t kWestern = 1252;

// The charset's name in mail: "utf-8" for 65001, "windows-1252" for 1252. A number that nobody knows:
// "windows-<n>".
std::string charsetOf(std::uint32_t codePage);
// The opposite; `otherwise` where the charset has no number.
std::uint32_t codePageOf(std::string_view charset, std::uint32_t otherwise);

// A byte that means nothing in the code page becomes U+FFFD.
Text fromCodePage(std::string_view bytes, std::uint32_t codePage);
// Characters that the code page has not become "?".
std::string toCodePage(TextView text, std::uint32_t codePage);

}  // namespace quillfile::formats::mapi

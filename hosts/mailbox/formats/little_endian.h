// Little-endian numbers, as both file formats keep them. Reading past the end gives zeros: a reader checks
// its bounds where it has something to say about them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quillfile::formats {

template <class Number>
void put(std::string& to, Number value) {
  auto bits = static_cast<std::uint64_t>(value);
  for (std::size_t i = 0; i < sizeof(Number); ++i, bits >>= 8) to += static_cast<char>(bits & 0xFF);
}

inline void put16(std::string& to, std::uint64_t value) { put(to, static_cast<std::uint16_t>(value)); }
inline void put32(std::string& to, std::uint64_t value) { put(to, static_cast<std::uint32_t>(value)); }
inline void put64(std::string& to, std::uint64_t value) { put(to, value); }

template <class Number>
Number number(std::string_view bytes, std::size_t offset) {
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < sizeof(Number); ++i) {
    if (offset < bytes.size() && i < bytes.size() - offset) {
      bits |= std::uint64_t{static_cast<unsigned char>(bytes[offset + i])} << (8 * i);
    }
  }
  return static_cast<Number>(bits);
}

inline std::uint16_t get16(std::string_view bytes, std::size_t offset) {
  return number<std::uint16_t>(bytes, offset);
}
inline std::uint32_t get32(std::string_view bytes, std::size_t offset) {
  return number<std::uint32_t>(bytes, offset);
}
inline std::uint64_t get64(std::string_view bytes, std::size_t offset) {
  return number<std::uint64_t>(bytes, offset);
}

// UTF-16, low byte first: as it is kept in both formats.
inline std::string utf16Bytes(std::u16string_view text) {
  std::string result;
  result.reserve(text.size() * 2);
  for (const char16_t unit : text) put16(result, unit);
  return result;
}
inline std::u16string utf16Text(std::string_view bytes) {
  std::u16string result(bytes.size() / 2, u'\0');
  for (std::size_t i = 0; i < result.size(); ++i) result[i] = get16(bytes, 2 * i);
  return result;
}

}  // namespace quillfile::formats

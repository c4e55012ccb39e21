// Runs of base64 digits: a table for every processor, and vector code where there is some. The vector code
// moves the five ranges of digits to their values, 16 or 32 bytes at once, and stops in the first block that
// has any other byte: what that block gives behind its last whole group is scribble, to be written over.
#include <array>
#include <bit>
#include <cstdint>

#include "hosts/mailbox/mime/decoding.h"

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#define QUILLFILE_X86
#endif

namespace quillfile::mime {
namespace {

constexpr std::array<unsigned char, 256> valueTable() {
  std::array<unsigned char, 256> values{};
  values.fill(64);
  const std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  for (std::size_t i = 0; i < digits.size(); ++i) {
    values[static_cast<unsigned char>(digits[i])] = static_cast<unsigned char>(i);
  }
  return values;
}
constexpr auto values = valueTable();

#ifdef QUILLFILE_X86
// What to add to a digit of each range to get its value.
struct DigitRange {
  char first, last, offset;
};
constexpr DigitRange ranges[] = {
    {'A', 'Z', -65}, {'a', 'z', -71}, {'0', '9', 4}, {'+', '+', 19}, {'/', '/', 16}};

std::size_t wholeGroups(int digits) { return static_cast<std::size_t>(digits) / 4 * 4; }

__attribute__((target("ssse3"))) std::size_t ssse3DigitRun(const char* in, std::size_t size, char* out) {
  const auto gather = _mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1);
  std::size_t done = 0;
  for (; size - done >= 16; done += 16, out += 12) {
    const auto bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + done));
    auto valid = _mm_setzero_si128();
    auto offsets = _mm_setzero_si128();
    for (const auto& range : ranges) {
      const auto inside =
          _mm_and_si128(_mm_cmpgt_epi8(bytes, _mm_set1_epi8(static_cast<char>(range.first - 1))),
                        _mm_cmpgt_epi8(_mm_set1_epi8(static_cast<char>(range.last + 1)), bytes));
      valid = _mm_or_si128(valid, inside);
      offsets = _mm_or_si128(offsets, _mm_and_si128(inside, _mm_set1_epi8(range.offset)));
    }
    const auto sixBits = _mm_add_epi8(bytes, offsets);
    const auto twelveBits = _mm_maddubs_epi16(sixBits, _mm_set1_epi16(0x0140));      // a * 64 + b
    const auto threeBytes = _mm_madd_epi16(twelveBits, _mm_set1_epi32(0x00011000));  // ab * 4096 + cd
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_shuffle_epi8(threeBytes, gather));
    const auto digits = std::countr_one(static_cast<std::uint32_t>(_mm_movemask_epi8(valid)));
    if (digits < 16) return done + wholeGroups(digits);
  }
  return done + plainDigitRun(in + done, size - done, out);
}

__attribute__((target("avx2"))) std::size_t avx2DigitRun(const char* in, std::size_t size, char* out) {
  const auto gather = _mm256_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1,  //
                                       2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1);
  std::size_t done = 0;
  for (; size - done >= 32; done += 32, out += 24) {
    const auto bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in + done));
    auto valid = _mm256_setzero_si256();
    auto offsets = _mm256_setzero_si256();
    for (const auto& range : ranges) {
      const auto inside =
          _mm256_and_si256(_mm256_cmpgt_epi8(bytes, _mm256_set1_epi8(static_cast<char>(range.first - 1))),
                           _mm256_cmpgt_epi8(_mm256_set1_epi8(static_cast<char>(range.last + 1)), bytes));
      valid = _mm256_or_si256(valid, inside);
      offsets = _mm256_or_si256(offsets, _mm256_and_si256(inside, _mm256_set1_epi8(range.offset)));
    }
    const auto sixBits = _mm256_add_epi8(bytes, offsets);
    const auto twelveBits = _mm256_maddubs_epi16(sixBits, _mm256_set1_epi16(0x0140));
    const auto threeBytes = _mm256_madd_epi16(twelveBits, _mm256_set1_epi32(0x00011000));
    const auto packed = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(threeBytes, gather),
                                                    _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), packed);
    const auto digits = std::countr_one(static_cast<std::uint32_t>(_mm256_movemask_epi8(valid)));
    if (digits < 32) return done + wholeGroups(digits);
  }
  return done + plainDigitRun(in + done, size - done, out);
}
#endif

}  // namespace

unsigned char base64Value(char digit) { return values[static_cast<unsigned char>(digit)]; }

std::size_t plainDigitRun(const char* in, std::size_t size, char* out) {
  std::size_t done = 0;
  for (; size - done >= 4; done += 4) {
    const std::uint32_t a = base64Value(in[done]), b = base64Value(in[done + 1]),
                        c = base64Value(in[done + 2]), d = base64Value(in[done + 3]);
    if ((a | b | c | d) >= 64) break;
    const auto bits = a << 18 | b << 12 | c << 6 | d;
    *out++ = static_cast<char>(bits >> 16);
    *out++ = static_cast<char>(bits >> 8);
    *out++ = static_cast<char>(bits);
  }
  return done;
}

DigitRun fastestDigitRun() {
#ifdef QUILLFILE_X86
  if (__builtin_cpu_supports("avx2")) return avx2DigitRun;
  if (__builtin_cpu_supports("ssse3")) return ssse3DigitRun;
#endif
  return plainDigitRun;
}

}  // namespace quillfile::mime

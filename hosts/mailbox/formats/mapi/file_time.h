// FILETIME: 100 ns since 1601-01-01 00:00 UTC, the time of both formats.
#pragma once

#include <cstdint>

#include "hosts/mailbox/formats/message_content.h"

namespace quillfile::formats::mapi {

inline constexpr std::int64_t kUnitsPerSecond = 10'000'000;
inline constexpr std::int64_t kEpoch = 11'644'473'600;  // seconds from 1601 to 1970
inline constexpr std::int64_t kEarliest = -kEpoch;
inline constexpr std::int64_t kLatest = 253'402'300'799;  // the end of 9999

// A time that a FILETIME cannot hold becomes the nearest that it can.
inline std::int64_t toFileTime(Time time) {
  const std::int64_t seconds = time.time_since_epoch().count();
  const std::int64_t held = seconds < kEarliest ? kEarliest : seconds > kLatest ? kLatest : seconds;
  return (held + kEpoch) * kUnitsPerSecond;
}

// None for a time before 1601 or after 9999.
inline std::optional<Time> fromFileTime(std::int64_t time) {
  const std::int64_t seconds = time / kUnitsPerSecond - kEpoch;
  if (time < 0 || seconds > kLatest) return std::nullopt;
  return Time(std::chrono::seconds(seconds));
}

}  // namespace quillfile::formats::mapi

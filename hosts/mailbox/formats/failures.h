// What the writers of this room refuse. Readers never throw: what they cannot read is a doubt or nothing.
#pragma once

#include "core/platform/failure.h"

namespace quillfile::formats::failures {

inline constexpr std::int32_t kNumber = 5;  // "invalid argument", by convention

inline Failure sizeChanged() {
  return {kNumber, u"An attachment gave another number of bytes than it had announced"};
}
inline Failure tooLarge() { return {kNumber, u"The message is too large for this file format"}; }
inline Failure tooDeep() { return {kNumber, u"The messages inside the message are nested too deeply"}; }

}  // namespace quillfile::formats::failures

// A storage of a compound file as a compound file of its own: how an OLE object leaves a message file.
#pragma once

#include "hosts/mailbox/formats/cfb/compound_file.h"

namespace quillfile::formats::msg {

// The bytes of all streams below a storage, as they are declared.
std::uint64_t sizeOfStreams(const CompoundFile& file, CompoundFile::Index storage);
// Damaged streams are filled up with zeros.
void copyStorage(const CompoundFile& file, CompoundFile::Index storage, const ByteSink& sink);

}  // namespace quillfile::formats::msg

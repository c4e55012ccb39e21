// Comparing transcripts line by line, and texts that read well when a comparison fails.
#pragma once

#include <gtest/gtest.h>

#include <source_location>
#include <string>
#include <vector>

#include "core/text/text.h"

namespace quillfile {

// The lines as UTF-8, one line each: a carriage return, a line feed and a tab inside one are written \r, \n,
// \t.
std::string joined(const std::vector<Text>& lines);

// Fails with a difference line by line when the transcripts are not the same.
void expectTranscript(const std::vector<Text>& actual, const std::vector<Text>& expected,
                      std::source_location where = std::source_location::current());

}  // namespace quillfile

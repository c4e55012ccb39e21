// Paths on their way into Win32.
#pragma once

#include "core/text/text.h"

namespace quillfile::windows {

// `path` as the wide file functions take it. A full path that is too long for the classic limit of 260
// characters gets the long-path form; every other path stays as it is.
//   C:\long...\a.pdf -> \\?\C:\long...\a.pdf      \\server\share\long...\a.pdf ->
//   \\?\UNC\server\share\long...\a.pdf
Text diskPath(TextView path);

// Whether `path` begins at a drive or a share, names no device, and has no wildcard in it.
bool isPlainFullPath(TextView path);

}  // namespace quillfile::windows

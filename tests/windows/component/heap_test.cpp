// For tests/windows/heap-check: it must tell of this, or it tells of nothing.
#include <gtest/gtest.h>
#include <windows.h>

namespace quillfile::windows {
namespace {

TEST(Heap, DISABLED_ABlockIsWrittenBehind) {
  constexpr SIZE_T bytes = 41;
  auto* const block = static_cast<volatile char*>(HeapAlloc(GetProcessHeap(), 0, bytes));
  ASSERT_NE(block, nullptr);
  block[bytes] = 1;
  HeapFree(GetProcessHeap(), 0, const_cast<char*>(block));
}

}  // namespace
}  // namespace quillfile::windows

// The suites run on one single-threaded apartment, as Outlook's user interface does.
#include <gtest/gtest.h>
#include <objbase.h>

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (FAILED(CoInitialize(nullptr))) return 1;
  const int result = RUN_ALL_TESTS();
  CoUninitialize();
  return result;
}

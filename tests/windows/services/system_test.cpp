#include "hosts/windows/services/system.h"

#include <gtest/gtest.h>

#include "core/platform/failure.h"
#include "hosts/windows/services/dates.h"
#include "hosts/windows/services/letters.h"
#include "hosts/windows/services/own_module.h"
#include "hosts/windows/services/user.h"
#include "tests/windows/fakes/print.h"
#include "tests/windows/services/temporary_folder.h"

namespace quillfile::windows {
namespace {

const LCID english = MAKELCID(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), SORT_DEFAULT);
const LCID german = MAKELCID(MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN), SORT_DEFAULT);
constexpr LocalTime afternoon{.year = 2009, .month = 3, .day = 4, .hour = 14, .minute = 5, .second = 0};
constexpr LocalTime midnight{.year = 2009, .month = 3, .day = 4};

TEST(LocaleDates, TheGeneralFormatIsTheLocales) {
  EXPECT_EQ(LocaleDates{english}.general(afternoon), u"3/4/2009 2:05:00 PM");
  EXPECT_EQ(LocaleDates{english}.general(midnight), u"3/4/2009");
  // Whether day and month have a leading zero differs between systems.
  EXPECT_TRUE(endsWith(LocaleDates{german}.general(afternoon), u"3.2009 14:05:00"));
}

TEST(LocaleDates, WhatIsWrittenIsReadBack) {
  for (const LCID locale : {english, german, LCID{LOCALE_USER_DEFAULT}}) {
    LocaleDates dates{locale};
    for (const auto& time :
         {afternoon, midnight,
          LocalTime{.year = 2026, .month = 12, .day = 31, .hour = 23, .minute = 59, .second = 59}}) {
      EXPECT_EQ(dates.parse(dates.general(time)), time);
    }
  }
}

TEST(LocaleDates, ATextThatIsNoDateIsATypeMismatch) {
  try {
    LocaleDates{english}.parse(u"no date");
    FAIL() << "it was taken for one";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.number, Failure::typeMismatch().number);
  }
}

TEST(SystemLetters, EachUnitKeepsItsPlace) {
  SystemLetters letters;
  EXPECT_EQ(letters.lower(u"PaperClip.ICO"), u"paperclip.ico");
  EXPECT_EQ(letters.lower(u"ÄÖÜ ß ΑΩ ЖЯ"), u"äöü ß αω жя");
  EXPECT_EQ(letters.lower(u"I\U0001F4CE\u4E2D"), u"i\U0001F4CE\u4E2D");
  EXPECT_EQ(letters.lower(u""), u"");
  const Text dotted = u"\u0130x";  // its lower case would need two units
  EXPECT_EQ(letters.lower(dotted).size(), dotted.size());
}

TEST(SystemClock, ItAdvancesASecondInASecond) {
  SystemClock clock;
  const auto start = clock.seconds();
  Sleep(1100);
  EXPECT_GE(clock.seconds() - start, 1);
  EXPECT_LE(clock.seconds() - start, 3);
}

TEST(SystemPrograms, AProgramIsStartedAndNotWaitedFor) {
  TemporaryFolder folder;
  const Text made = folder / u"made.txt";
  const auto start = GetTickCount64();
  SystemPrograms{}.start(fill(u"cmd.exe /c ping -n 2 127.0.0.1 >nul & echo done> \"{}\"", made), made);
  EXPECT_EQ(GetFileAttributesW(wide(made)), INVALID_FILE_ATTRIBUTES) << "it was waited for";
  while (GetFileAttributesW(wide(made)) == INVALID_FILE_ATTRIBUTES && GetTickCount64() - start < 20'000)
    Sleep(50);
  EXPECT_NE(GetFileAttributesW(wide(made)), INVALID_FILE_ATTRIBUTES);
  Sleep(200);
}

TEST(SystemPrograms, AProgramThatIsNotThereFailsWithTheSystemsCode) {
  try {
    SystemPrograms{}.start(u"C:\\missing\\program.exe x", u"x");
    FAIL() << "it was started";
  } catch (const Failure& failure) {
    EXPECT_TRUE(failure.number == ERROR_PATH_NOT_FOUND || failure.number == ERROR_FILE_NOT_FOUND)
        << failure.number;
  }
}

TEST(SystemPrograms, TheMachineHasItsName) {
  wchar_t name[MAX_COMPUTERNAME_LENGTH + 1];
  DWORD length = MAX_COMPUTERNAME_LENGTH + 1;
  GetComputerNameW(name, &length);
  EXPECT_EQ(SystemPrograms{}.machineName(), view(name));
}

TEST(DesktopUser, EventsThatWaitAreHandledAndAQuitIsPassedOn) {
  static int handled = 0;
  const UINT_PTR timer = SetTimer(nullptr, 0, 10, [](HWND, UINT, UINT_PTR, DWORD) { ++handled; });
  Sleep(100);
  DesktopUser user;
  user.processPendingEvents();
  KillTimer(nullptr, timer);
  EXPECT_GE(handled, 1);

  PostQuitMessage(7);
  user.processPendingEvents();
  MSG message;
  ASSERT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
  EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
  EXPECT_EQ(message.wParam, 7u);
}

TEST(OwnModule, TheFolderHoldsTheFile) {
  EXPECT_EQ(ownPath().find(ownFolder() + u"\\"), 0u);
  EXPECT_NE(GetFileAttributesW(wide(ownPath())), INVALID_FILE_ATTRIBUTES);
}

}  // namespace
}  // namespace quillfile::windows

// Which messages are signed or encrypted, so that nothing may be taken out of them.
#include <gtest/gtest.h>

#include "hosts/mailbox/mime/protection.h"
#include "hosts/mailbox/mime/scan.h"

using namespace quillfile::mime;

namespace {

Protection of(const std::string& header) { return protection(scan(header + "\nAAAA\n")); }

}  // namespace

TEST(ProtectionOf, AnSMimeMessageIsWhatItsTypeSays) {
  EXPECT_EQ(of("Content-Type: application/pkcs7-mime; smime-type=enveloped-data; name=smime.p7m\n"),
            Protection::encrypted);
  EXPECT_EQ(of("Content-Type: application/pkcs7-mime; name=smime.p7m\n"), Protection::encrypted);
  EXPECT_EQ(of("Content-Type: application/x-pkcs7-mime; smime-type=Signed-Data\n"), Protection::is_signed);
  EXPECT_EQ(of("Content-Type: application/pkcs7-signature\n"), Protection::is_signed);
}

TEST(ProtectionOf, AnSMimeMessageWithoutAKnownTypeIsToldByItsName) {
  EXPECT_EQ(of("Content-Type: application/octet-stream; name=SMIME.P7M\n"), Protection::encrypted);
  EXPECT_EQ(
      of("Content-Type: application/octet-stream\nContent-Disposition: attachment; filename=smime.p7s\n"),
      Protection::is_signed);
  EXPECT_EQ(of("Content-Type: application/octet-stream; name=smime.pdf\n"), Protection::none);
  EXPECT_EQ(of("Content-Type: text/plain; name=about.p7m\n"), Protection::none);
}

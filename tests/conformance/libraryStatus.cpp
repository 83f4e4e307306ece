// How the library itself sets a status.

#define OXDIAG_STATUS_FILE "source/status/tSomeReportable"
#include "status/libraryStatus.h"

#include "conformance/harness.h"

using nOXDIAG100::tStatus2;

TEST(LibraryStatus, NamesTheLibraryAndTheSourceTag) {
  tStatus2 status;
  u32 const line = __LINE__ + 1;
  OXDIAG_SET_STATUS(status, -89000);
  EXPECT_EQ(status.getCode(), -89000);
  EXPECT_STREQ(status.getComponentName(), "oxdiagk");
  EXPECT_STREQ(status.getFileName(), "source/status/tSomeReportable");
  EXPECT_EQ(status.getLineNumber(), line);
}

// A start of the module by somebody else, within which the library is started and unloaded.

#include <gtest/gtest.h>

#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "oxdiagk/module.h"
#include "oxdiagk/package.h"
#include "package/everyOperation.h"
#include "package/windows/moduleRecord.h"
#include "qelmk/module.h"
#include "vexk/module.h"

TEST(SharedStart, WhoStartedFirstStopsLast) {
  ASSERT_EQ(vexkInitialize(), STATUS_SUCCESS);
  ASSERT_EQ(qelmkInitialize(), STATUS_SUCCESS);
  ASSERT_EQ(oxdiagkInitialize(nullptr), STATUS_SUCCESS);
  EXPECT_EQ(pkgWDMWrapperCallSSMain(0), 0);
  EXPECT_EQ(oxdiagkUnload(), STATUS_SUCCESS);
  EXPECT_FALSE(isLibraryAtRest());
  EXPECT_STREQ(nOXDIAG100::moduleRecord.info.name, "oxdiagk");
  EXPECT_EQ(pkgWDMWrapperCallSSMain(1), 0);
  EXPECT_TRUE(isLibraryAtRest());
  qelmkUnload();
  vexkUnload();
  ntoshost::requireNoOutstanding("the library");
}

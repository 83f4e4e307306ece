// The object framework when the layer beneath is missing, or short of memory.

#include "qelmk/module.h"

#include <gtest/gtest.h>

#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "qelmk/qelmk.h"
#include "vexk/memory.h"
#include "vexk/module.h"

namespace qelmkHostTests {

class tThing : public virtual nQELM100::tObject {
  QELM_DECLARE_CLASS(tThing, nQELM100::tObject)
};

}  // namespace qelmkHostTests

QELM_DEFINE_CLASS(qelmkHostTests::tThing, "qelmkHostTests::tThing")

using qelmkHostTests::tThing;

namespace {

// How many of the framework's own classes are found.
int countOwnClasses() {
  int count = 0;
  for (char const* const name : {"nQELM100::iCloneable", "nQELM100::iExternalizable",
                                 "nQELM100::iCloneableExternalizable"}) {
    i32 status = 0;
    count += nQELM100::tClass::forName(name, status).isValid() ? 1 : 0;
  }
  return count;
}

}  // namespace

TEST(QelmkHostModule, DoesNotStartWithoutThePlatformLayer) {
  EXPECT_EQ(static_cast<NTSTATUS>(0xC000026C), qelmkInitialize());
  EXPECT_EQ(0u, pkgIsQelmkInitialized());
}

TEST(QelmkHostModule, StartsAreCounted) {
  vexkInitialize();
  EXPECT_EQ(STATUS_SUCCESS, qelmkInitialize());
  EXPECT_EQ(STATUS_SUCCESS, qelmkInitialize());
  EXPECT_EQ(STATUS_SUCCESS, qelmkUnload());
  EXPECT_EQ(1u, pkgIsQelmkInitialized());
  EXPECT_EQ(3, countOwnClasses());
  EXPECT_EQ(STATUS_SUCCESS, qelmkUnload());
  EXPECT_EQ(0u, pkgIsQelmkInitialized());
  EXPECT_EQ(0, countOwnClasses());
  vexkUnload();
}

TEST(QelmkHostModule, AStopWithoutStartDoesNothing) {
  EXPECT_EQ(STATUS_SUCCESS, qelmkUnload());
  EXPECT_EQ(0u, pkgIsQelmkInitialized());
}

TEST(QelmkHostClass, AnExhaustedPoolMakesNoInstance) {
  i32 status = 0;
  nQELM100::tClass const thingClass = tThing::staticGetClass(status);
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  EXPECT_EQ(nullptr, thingClass.newInstance(status));
  ntoshost::clearFaults();
  EXPECT_EQ(kStatusOutOfMemory, status);
}

TEST(QelmkHostClass, AWarningBecomesOutOfMemory) {
  i32 status = 1;
  nQELM100::tClass const thingClass = tThing::staticGetClass(status);
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  EXPECT_EQ(nullptr, thingClass.newInstance(status));
  ntoshost::clearFaults();
  EXPECT_EQ(kStatusOutOfMemory, status);
}

TEST(QelmkHostClass, ADestroyedInstanceLeavesNothing) {
  i32 status = 0;
  nQELM100::tClass const thingClass = tThing::staticGetClass(status);
  nQELM100::tObject* object = thingClass.newInstance(status);
  EXPECT_EQ(1u, ntoshost::outstandingBlocks());
  thingClass.deleteInstance(object, status);
  EXPECT_EQ(0u, ntoshost::outstandingBlocks());
}

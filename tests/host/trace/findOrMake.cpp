// Two who ask for an object first at once.

#include "trace/findOrMake.h"

#include <gtest/gtest.h>

namespace {

// While one is made, somebody else may be faster.
struct tRacer {
  tRacer() {
    ++living;
    if (rival != nullptr) place = rival;
  }
  ~tRacer() { --living; }

  static tRacer* place;
  static tRacer* rival;
  static int living;
};

tRacer* tRacer::place = nullptr;
tRacer* tRacer::rival = nullptr;
int tRacer::living = 0;

}  // namespace

TEST(FindOrMake, OfTwoObjectsTheFirstOneStays) {
  tRacer first;
  tRacer::rival = &first;
  EXPECT_EQ(nOXDIAG100::findOrMake(tRacer::place), &first);
  EXPECT_EQ(tRacer::living, 1);
  EXPECT_EQ(nOXDIAG100::findOrMake(tRacer::place), &first);
}

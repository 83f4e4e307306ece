// Texts of settings of objects that are not as they should be.

#include "config/options/savedSettings.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "trace/startedModules.h"

namespace {

// Its settings are longer by a character each time they are asked for; of a size that it does not
// tell, it has none.
class tGrowingObject {
 public:
  void inquire(char* buffer, unsigned int size, unsigned int* needed) {
    ++asked;
    if (!tellsSize) return;
    std::string const text(growth * asked, 'x');
    *needed = static_cast<unsigned int>(text.size() + 1);
    if (size == 0) return;
    strncpy(buffer, text.c_str(), size - 1);
    buffer[size - 1] = 0;
  }

  bool tellsSize = true;
  u32 growth = 0;
  u32 asked = 0;
};

}  // namespace

TEST(SavedSettings, OfAnObjectThatTellsNoSizeAreNone) {
  tGrowingObject object;
  object.tellsSize = false;
  EXPECT_EQ(nOXDIAG100::copySettings(object, kMemLongLived), nullptr);
  EXPECT_EQ(object.asked, 1u);
}

TEST(SavedSettings, ThatStayAreAskedForOnceMore) {
  tGrowingObject object;
  char* const text = nOXDIAG100::copySettings(object, kMemLongLived);
  EXPECT_STREQ(text, "");
  EXPECT_EQ(object.asked, 2u);
  _memDelete(text);
}

TEST(SavedSettings, ThatGrowWithoutEndAreCutInTheEnd) {
  tGrowingObject object;
  object.growth = 1;
  char* const text = nOXDIAG100::copySettings(object, kMemLongLived);
  EXPECT_EQ(object.asked, 200u);
  EXPECT_EQ(std::string(text), std::string(199, 'x'));
  _memDelete(text);
}

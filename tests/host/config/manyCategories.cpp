// As many categories as one request can name, made, inquired, saved and restored through the
// tunnel.

#include <gtest/gtest.h>

#include <string>

#include "oxdiagk/instanceRegistry.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "support/tunnelRecords.h"
#include "trace/startedModules.h"

namespace {

using namespace nOXDIAG100;

constexpr u32 kRequestBytes = 1'000'000;

std::string nameOf(size_t index) {
  return "slot" + std::to_string(100'000 + index);
}

// One long option text, and the number of categories in it.
struct tManyNames {
  tManyNames() {
    for (;; ++count) {
      std::string const words = " --category " + nameOf(count);
      if (text.size() + words.size() > kRequestBytes) break;
      text += words;
    }
  }

  std::string text;
  size_t count = 0;
};

std::string inquireThroughTunnel(u32 handle) {
  u32 needed = 0;
  tTestRequest(handle, inquireRecord(nullptr, 0, &needed)).send();
  std::string text(needed, '#');
  tTestRequest(handle, inquireRecord(text.data(), needed, &needed)).send();
  EXPECT_EQ(needed, text.size());
  text.pop_back();
  return text;
}

}  // namespace

TEST(ManyCategories, AsManyAsARequestCanNameAreMadeInquiredSavedAndRestored) {
  tManyNames const names;
  ASSERT_GT(names.count, 45'000u);
  tAssertConfiguration& contracts = tAssertConfiguration::getInstance();
  char assert[] = "assert";
  u32 const handle = acquireInstance(assert);
  tTestRequest(handle, makeRecord(4, addressOf(names.text.data()), names.text.size())).send();
  for (size_t index = 0; index < names.count; ++index) {
    ASSERT_TRUE(contracts.checksAreEnabled(nameOf(index).c_str())) << index;
  }
  std::string const before = inquireThroughTunnel(handle);
  EXPECT_GT(before.size(), kTunnelMostBytes);
  tTestRequest(handle, makeRecord(6)).send();
  for (size_t index = 0; index < names.count; ++index) {
    contracts.disableChecks(nameOf(index).c_str());
  }
  EXPECT_NE(inquireThroughTunnel(handle), before);
  tTestRequest(handle, makeRecord(7)).send();
  EXPECT_TRUE(inquireThroughTunnel(handle) == before);
  releaseInstance(handle);
}

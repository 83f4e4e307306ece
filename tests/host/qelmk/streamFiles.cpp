// The committed streams: what the library writes today is, byte for byte, what it wrote when they
// were made. They are inputs of the fuzz target of the reader at the same time. To make them again:
//
//     OXDIAG_WRITE_STREAMS=1 qelmk.streamFiles

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "oxdiagk/module.h"
#include "qelmk/module.h"
#include "qelmk/qelmk.h"
#include "support/sampleDescription.h"
#include "support/statusOrigin.h"
#include "vexk/module.h"

namespace {

using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Description;
using nQELM100::tBinaryObjectWriter;
using nQELM100::tObject;

class QelmkStreamFiles : public testing::Test {
 public:
  static void SetUpTestSuite() {
    vexkInitialize();
    qelmkInitialize();
    ASSERT_EQ(STATUS_SUCCESS, oxdiagkInitialize(nullptr));
  }
  static void TearDownTestSuite() {
    oxdiagkUnload();
    qelmkUnload();
    vexkUnload();
    ntoshost::requireNoOutstanding("the suite");
  }
};

template <class Write>
std::string streamBy(Write write) {
  std::string bytes(8192, '#');
  tBinaryObjectWriter writer(bytes.data(), bytes.size());
  i32 status = 0;
  write(writer, status);
  writer.finish(status);
  EXPECT_EQ(0, status);
  bytes.resize(writer.getSize());
  return bytes;
}

std::string bytesOf(tObject const& object) {
  return streamBy(
      [&](tBinaryObjectWriter& writer, i32& status) { writer.writeObject(&object, status); });
}

std::string bytesOf(tStatus2 const& value) {
  return streamBy(
      [&](tBinaryObjectWriter& writer, i32& status) { value.writeExternal(writer, status); });
}

// The committed bytes; the new ones when they are to be written.
std::string committed(std::string const& name, std::string const& bytes) {
  std::string const path = OXDIAG_SOURCE_DIR "/tests/fuzz/corpus/binaryReader/" + name;
  if (std::getenv("OXDIAG_WRITE_STREAMS") != nullptr) {
    std::ofstream(path, std::ios::binary) << bytes;
  }
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

}  // namespace

TEST_F(QelmkStreamFiles, ADescriptionWithEveryKindOfValueIsWrittenAsEver) {
  tStatus2Description description;
  ASSERT_TRUE(sample::describeEverything(description));
  std::string const bytes = bytesOf(description);
  EXPECT_EQ(committed("everything", bytes), bytes);
}

TEST_F(QelmkStreamFiles, EachValueIsWrittenAsEver) {
  tStatus2Description description;
  ASSERT_TRUE(sample::describeEverything(description));
  tStatus2 status;
  for (u32 index = 0; index < description.getNumberOfReportItems(status); ++index) {
    std::string const bytes = bytesOf(*description.getReportablePtrAtIndex(index, status));
    EXPECT_EQ(committed("value" + std::to_string(index), bytes), bytes) << index;
  }
}

TEST_F(QelmkStreamFiles, AStatusWithADescriptionIsWrittenAsEver) {
  tStatus2Description description;
  ASSERT_TRUE(sample::addTexts(description));
  tOrigin const origin("component", "file.cpp");
  tStatus2 status;
// The status carries the line that it was set at.
#line 1000
  OXDIAG_SET_STATUS_WITH_DESCRIPTION_WITHOUT_STACK_TRACE(status, -61007, description);
  std::string const bytes = bytesOf(status);
  EXPECT_EQ(committed("status", bytes), bytes);
}

TEST_F(QelmkStreamFiles, APlainStatusIsWrittenAsEver) {
  tStatus2 status;
  status.setCode(-61007);
  std::string const bytes = bytesOf(status);
  EXPECT_EQ(committed("plainStatus", bytes), bytes);
}

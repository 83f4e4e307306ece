#include "tPlatform.h"

#include <gtest/gtest.h>

#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "oxdiagk/tunnelRequest.h"
#include "qelmk/qelmk.h"
#include "trace/capturedPrint.h"
#include "vexk/iLib.h"
#include "vexk/module.h"
#include "vexk/statusCodes.h"

std::vector<std::string> const kClassNames = {
    "nOXDIAG100::iReportableTranslatorForEmptyContainers",
    "nOXDIAG100::iReportableTranslatorForI64",
    "nOXDIAG100::iReportableTranslatorTimeAbsolute",
    "nOXDIAG100::iStatus2Description",
    "nOXDIAG100::iStringIDToWideStringConverter",
    "nOXDIAG100::iVariantReportable",
    "nOXDIAG100::tBoundedRangeReportable<i32>",
    "nOXDIAG100::tBoundedRangeReportable<u32>",
    "nOXDIAG100::tBoundedRangeReportable<i64>",
    "nOXDIAG100::tBoundedRangeReportable<u64>",
    "nOXDIAG100::tEnumPropertyReportable",
    "nOXDIAG100::tGUIDReportable",
    "nOXDIAG100::tIntrinsicTypeReportable<i32>",
    "nOXDIAG100::tIntrinsicTypeReportable<u32>",
    "nOXDIAG100::tIntrinsicTypeReportable<i64>",
    "nOXDIAG100::tIntrinsicTypeReportable<u64>",
    "nOXDIAG100::tIntrinsicTypeReportable<_STL::wstring>",
    "nOXDIAG100::tPropertyIDReportable",
    "nOXDIAG100::tReportItem",
    "nOXDIAG100::tSSTimeAbsoluteReportable",
    "nOXDIAG100::tStatus2Description",
    "nOXDIAG100::tStatus2DescriptionImplementation",
    "nOXDIAG100::tStringProxyReportable",
    "nOXDIAG100::tTitleReportable",
    "nOXDIAG100::tWhiteSpaceReportable",
};

namespace {

// A dispatcher with the name of the library's, which can be exported when that one is gone.
class tNamesake : public iLib::iDispatcher {
 public:
  tNamesake() : iDispatcher(nOXDIAG100::kTunnelName) {}
  void dispatch(u64 /*request*/) override {}
};

bool isTunnelNameFree() {
  tNamesake namesake;
  i32 status = 0;
  iLib::exportDispatcher(namesake, status);
  i32 withdrawal = 0;
  iLib::unexportDispatcher(namesake, withdrawal);
  return status == 0;
}

u64 countEvents() {
  tVexEvent event = {};
  for (u64 next = 1; vexReadEvent(next, event); next = event.number + 1) {
  }
  return event.number;
}

}  // namespace

tPlatform::tPlatform() : firstEvent(countEvents() + 1) {
  EXPECT_EQ(vexkInitialize(), STATUS_SUCCESS);
  EXPECT_EQ(qelmkInitialize(), STATUS_SUCCESS);
}

tPlatform::~tPlatform() {
  EXPECT_EQ(findLeftovers(), "");
  tCapturedPrint const print;
  qelmkUnload();
  vexkUnload();
  EXPECT_EQ(print.text(), "");
}

std::string tPlatform::findLeftovers() {
  std::string found;
  if (ntoshost::outstandingBlocks() != 0) found += "memory ";
  if (ntoshost::outstandingHandles() != 0) found += "handles ";
  if (!isTunnelNameFree()) found += "dispatcher ";
  for (std::string const& name : kClassNames) {
    i32 status = 0;
    if (nQELM100::tClass::forName(name.c_str(), status).isValid()) found += name + " ";
  }
  return found;
}

std::vector<tVexEvent> tPlatform::getEvents() const {
  std::vector<tVexEvent> events;
  tVexEvent event;
  for (u64 next = firstEvent; vexReadEvent(next, event); next = event.number + 1) {
    events.push_back(event);
  }
  return events;
}

std::string tPlatform::getEventTexts() const {
  std::string texts;
  for (tVexEvent const& event : getEvents()) texts += std::string(event.text) + "\n";
  return texts;
}

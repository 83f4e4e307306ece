// Objects for a debugger to show: as they are in a program, then with bytes in them that make no
// sense. The debugger stops in show().

#include <stdio.h>
#include <string.h>

#include "oxdiagk/module.h"
#include "oxdiagk/oxdiagk.h"
#include "qelmk/module.h"
#include "status/tStatus2DescriptionImplementation.h"
#include "status/tStatus2Implementation.h"
#include "stl/list.h"
#include "stl/map.h"
#include "trace/tTraceFilterTerm.h"
#include "vexk/module.h"

#define OXDIAG_COMPONENT "samples"

using namespace nOXDIAG100;

namespace {

struct tSamples {
  tTitleReportable title;
  tStatus2 success;
  tStatus2 plainCode{-5};
  tStatus2 warning{61001};
  tStatus2 failure;
  tStatus2 steering;  // with texts that would steer a terminal
  tStatus2 ring;      // items whose values are their own description
  _STL::string text;
  _STL::wstring wide;
  _STL::vector<u32> numbers;
  _STL::single_vector<i32> single;
  _STL::list<i32> list;
  _STL::map<i32, _STL::string> map;
  tTraceFilter filter;
  tTraceFilter emptyFilter;
  tStatus2Heap* heap = nullptr;
  nQELM100::tGUID guid{
      0x6D1F20C4, 0x8A57, 0x4B3E, {0x91, 0x0C, 0x5E, 0x27, 0xB8, 0x44, 0x13, 0xF9}};
  tSSTimeAbsolute time = tSSTimeAbsolute::ofKernelTime(134'082'846'001'250'000);
  tSSVersion version{2, 0, 1, tSSVersion::kPhaseBeta, 7, 0};
};

void describe(tStatus2& status) {
  tStatus2 own;
  tStatus2Description description(own);
  description.addHeader(1, own);
  description.addReportItem(2, tIntrinsicTypeReportable<u32>(121, own), own);
  description.addReportItem(3, tBoundedRangeReportable<u32>(1, 99, own), own);
  description.addReportItem(4, tIntrinsicTypeReportable<_STL::wstring>(_STL::wstring(L"1O"), own),
                            own);
  description.addReportItem(5, tEnumPropertyReportable(5, 1, own), own);
  status.setDescription(description);
}

#undef OXDIAG_COMPONENT
#define OXDIAG_COMPONENT "a\x1B[2J\n"

void steer(tStatus2& status) {
  OXDIAG_SET_STATUS(status, -5);
  tStatus2 own;
  tStatus2Description description(own);
  _STL::wstring const text(L"\x1B[2J\x9B");
  description.addReportItem(4, tIntrinsicTypeReportable<_STL::wstring>(text, own), own);
  status.setDescription(description);
}

#undef OXDIAG_COMPONENT
#define OXDIAG_COMPONENT "samples"

// The debugger puts the description into the items: it sees what is private.
void turnRound(tStatus2& status) {
  OXDIAG_SET_STATUS(status, -6);
  tStatus2 own;
  tStatus2Description description(own);
  for (u32 i = 0; i != 8; ++i) description.addHeader(1, own);
  status.setDescription(description);
}

void fill(tSamples& samples) {
  OXDIAG_SET_STATUS(samples.failure, -61007);
  describe(samples.failure);
  steer(samples.steering);
  turnRound(samples.ring);
  samples.text = _STL::string("narrow \"text\"");
  samples.wide = _STL::wstring(L"wide \u00E4");
  for (u32 i = 0; i != 3; ++i) samples.numbers.push_back(i * 10);
  samples.single.push_back(7);
  for (i32 i = 1; i != 4; ++i) samples.list.push_back(i);
  samples.map.insert(2, _STL::string("two"));
  samples.map.insert(1, _STL::string("one"));
  samples.filter.parseExpression("verbosity>=100 && compname==rack || line!=5");
  samples.emptyFilter.removeAll();
  i32 status = 0;
  samples.heap = tStatus2Heap::getHeap(status);
}

__attribute__((noinline)) void show(char const* what, tSamples& samples, void* bytes) {
  printf("%s %p %p\n", what, static_cast<void*>(&samples), bytes);
  __asm__ volatile("" : : "r"(&samples), "r"(bytes) : "memory");
}

// Room for objects that are none.
alignas(16) char garbage[1 << 20];

}  // namespace

int main() {
  vexkInitialize();
  qelmkInitialize();
  oxdiagkInitialize(nullptr);
  {
    tSamples samples;
    fill(samples);
    show("good", samples, garbage);
    memset(garbage, 0xA5, sizeof garbage);
    show("garbage", samples, garbage);
    // A list and a block that lead back to themselves, and sizes beyond everything.
    for (size_t i = 0; i != sizeof garbage; i += sizeof(void*)) {
      void* const self = garbage;
      memcpy(garbage + i, &self, sizeof self);
    }
    show("rings", samples, garbage);
  }
  oxdiagkUnload();
  qelmkUnload();
  vexkUnload();
}

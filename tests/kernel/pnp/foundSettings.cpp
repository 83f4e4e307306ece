// What the driver finds set in the library, which it shares with this one.

#include "conformance/harness.h"
#include "ntos/string.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "oxdiagk/tTrace.h"
#include "pnpDriver.h"
#include "tLoadedRack.h"
#include "wine/wineKernel.h"

using nOXDIAG100::tAssertConfiguration;
using nOXDIAG100::tConfigurable;
using nOXDIAG100::tTrace;

namespace {

bool beginsWith(char const* text, char const* words) {
  while (*words != '\0' && *text == *words) {
    ++text;
    ++words;
  }
  return *words == '\0';
}

// The settings of an object, without what each calibration measures anew. Too large for a stack.
struct tSettings {
  char text[512];

  void read(tConfigurable& object) {
    object.inquire(text, sizeof(text), nullptr);
    for (char* place = text; *place != '\0'; ++place) {
      if (beginsWith(place, " --calibrate")) *place = '\0';
    }
  }

  bool contains(char const* words) const {
    for (char const* place = text; *place != '\0'; ++place) {
      if (beginsWith(place, words)) return true;
    }
    return false;
  }
};

constinit tSettings traceBefore = {};
constinit tSettings assertBefore = {};
constinit tSettings now = {};

// A text value of the rack's service while it lives.
class tServiceValue {
 public:
  template <u32 size>
  tServiceValue(wchar_t const* valueName, wchar_t const (&text)[size]) {
    RtlInitUnicodeString(&name, valueName);
    UNICODE_STRING path;
    RtlInitUnicodeString(&path, kFirstRack.key);
    OBJECT_ATTRIBUTES attributes;
    InitializeObjectAttributes(&attributes, &path, OBJ_CASE_INSENSITIVE | OBJ_KERNEL_HANDLE,
                               nullptr, nullptr);
    status = ZwOpenKey(&key, kKeyAllAccess, &attributes);
    if (NT_SUCCESS(status)) status = ZwSetValueKey(key, &name, 0, REG_SZ, text, sizeof(text));
  }
  ~tServiceValue() {
    if (key == nullptr) return;
    ZwDeleteValueKey(key, &name);
    ZwClose(key);
  }
  tServiceValue(tServiceValue const&) = delete;
  tServiceValue& operator=(tServiceValue const&) = delete;

  NTSTATUS status;

 private:
  UNICODE_STRING name;
  HANDLE key = nullptr;
};

}  // namespace

TEST(Pnp, TheDriverGivesBackWhatItFoundSet) {
  tTrace& trace = tTrace::getInstance();
  tAssertConfiguration& assertions = tAssertConfiguration::getInstance();
  trace.configure("--filter verbosity>=130 --threadid on");
  tServiceValue const traceValue(L"Trace", L"--destination file C:/found.out --threadid off");
  tServiceValue const assertValue(L"Assert", L"--category default --checks off");
  EXPECT_EQ(traceValue.status, STATUS_SUCCESS);
  EXPECT_EQ(assertValue.status, STATUS_SUCCESS);
  traceBefore.read(trace);
  assertBefore.read(assertions);
  tLoadedRack rack(pnpEnumerator());
  EXPECT_STREQ(rack.load(), nullptr);
  now.read(trace);
  EXPECT_TRUE(now.contains("--destination file C:/found.out"));
  EXPECT_TRUE(now.contains("--threadid off"));
  EXPECT_TRUE(now.contains("verbosity>=200"));
  now.read(assertions);
  EXPECT_TRUE(now.contains("--checks off"));
  EXPECT_STREQ(rack.unload(), nullptr);
  now.read(trace);
  EXPECT_STREQ(now.text, traceBefore.text);
  now.read(assertions);
  EXPECT_STREQ(now.text, assertBefore.text);
  trace.configure("--filter verbosity>=200 --threadid off");
}

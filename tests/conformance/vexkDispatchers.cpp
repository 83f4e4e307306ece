#include "conformance/harness.h"
#include "vexk/iLib.h"
#include "vexk/moduleInfo.h"
#include "vexk/statusCodes.h"

namespace {

constexpr char kName[] = "nTEST://nEcho";
constexpr size_t kNameLength = sizeof(kName) - 1;

u64 lastRequest = 0;

class tEcho : public iLib::iDispatcher {
 public:
  explicit tEcho(char const* name = kName) : iDispatcher(name) {
    iLib::exportDispatcher(*this, status);
  }
  ~tEcho() override { withdraw(); }

  i32 withdraw() {
    i32 withdrawal = 0;
    iLib::unexportDispatcher(*this, withdrawal);
    return withdrawal;
  }

  void dispatch(u64 request) override {
    lastRequest = request;
    ++requests;
  }

  i32 status = 0;
  u32 requests = 0;
};

i32 deliver(char const* name, size_t length, u64 request = 1) {
  i32 status = 0;
  iLib::deliver(name, length, request, status);
  return status;
}

i32 deliver(u64 request = 1) {
  return deliver(kName, kNameLength, request);
}

// What a module's entry sees and says.
u32 entryReasons = 0;  // the reasons of the calls as decimal digits, a 1 before them
i32 entryStatus = 0;
i32 deliveryInEntry = 0;

i32 moduleEntry(u32 reason) {
  entryReasons = entryReasons * 10 + reason;
  deliveryInEntry = deliver();
  return entryStatus;
}

// A module of this file, registered for the length of a test.
class tModule {
 public:
  tModule() {
    entryReasons = 1;
    entryStatus = 0;
    deliveryInEntry = 0;
  }
  ~tModule() {
    if (isRegistered) close();
  }
  tModule(tModule const&) = delete;
  tModule& operator=(tModule const&) = delete;

  i32 open() {
    i32 status = 0;
    libRegisterModuleWithVEX(info, status);
    if (status >= 0) isRegistered = true;
    return status;
  }

  i32 close() {
    i32 status = 0;
    libUnregisterModuleWithVEX(info, status);
    isRegistered = false;
    return status;
  }

  tModulePackage package = {};
  _tLibModuleInfo info = {&package, "test", &moduleEntry, 0};
  bool isRegistered = false;
};

}  // namespace

TEST(Dispatchers, AreReachedOnceTheirModuleIsRegistered) {
  tModule module;
  tEcho echo;
  EXPECT_EQ(0, echo.status);
  EXPECT_EQ(kStatusNoDispatcher, deliver());
  EXPECT_EQ(0, module.open());
  EXPECT_EQ(kStatusNoDispatcher, deliveryInEntry);
  EXPECT_EQ(0, deliver(0x123456789ABCDEF0u));
  EXPECT_EQ(0x123456789ABCDEF0u, lastRequest);
  EXPECT_EQ(1u, echo.requests);
}

TEST(Dispatchers, ExportedBehindTheRegistrationAreTheNextModules) {
  tModule first;
  tModule second;
  EXPECT_EQ(0, first.open());
  tEcho const echo;
  EXPECT_EQ(0, echo.status);
  EXPECT_EQ(kStatusNoDispatcher, deliver());
  EXPECT_EQ(0, second.open());
  EXPECT_EQ(0, deliver());
  EXPECT_EQ(0, first.close());
  EXPECT_EQ(0, deliver());
  EXPECT_EQ(0, second.close());
  EXPECT_EQ(kStatusNoDispatcher, deliver());
}

TEST(Dispatchers, StayWithTheirModuleWhenAnotherComes) {
  tModule first;
  tModule second;
  tEcho const echo;
  EXPECT_EQ(0, first.open());
  EXPECT_EQ(0, second.open());
  EXPECT_EQ(0, second.close());
  EXPECT_EQ(0, deliver());
  EXPECT_EQ(0, first.close());
  EXPECT_EQ(kStatusNoDispatcher, deliver());
}

TEST(Dispatchers, ExportedAnewAreTheNextModules) {
  tModule first;
  tModule second;
  tEcho echo;
  EXPECT_EQ(0, first.open());
  EXPECT_EQ(0, echo.withdraw());
  iLib::exportDispatcher(echo, echo.status);
  EXPECT_EQ(0, echo.status);
  EXPECT_EQ(kStatusNoDispatcher, deliver());
  EXPECT_EQ(0, second.open());
  EXPECT_EQ(0, deliver());
}

TEST(Dispatchers, AreReachedNoMoreOnceTheirModuleIsBeingUnregistered) {
  tModule module;
  tEcho echo;
  module.open();
  EXPECT_EQ(0, module.close());
  EXPECT_EQ(101u, entryReasons);
  EXPECT_EQ(kStatusNoDispatcher, deliveryInEntry);
  EXPECT_EQ(kStatusNoDispatcher, deliver());
  EXPECT_EQ(0u, echo.requests);
}

TEST(Dispatchers, AreReachedNoMoreOnceTheyAreWithdrawn) {
  tModule module;
  tEcho echo;
  module.open();
  EXPECT_EQ(0, echo.withdraw());
  EXPECT_EQ(kStatusNoDispatcher, deliver());
  EXPECT_EQ(0, echo.withdraw());
}

TEST(Dispatchers, OfAModuleThatFailsToStartAreReachedByNobody) {
  tModule module;
  tEcho const echo;
  entryStatus = -7;
  EXPECT_EQ(-7, module.open());
  EXPECT_EQ(kStatusNoDispatcher, deliver());
}

TEST(Dispatchers, AreFoundByTheirWholeName) {
  tModule module;
  tEcho const echo;
  module.open();
  EXPECT_EQ(kStatusNoDispatcher, deliver(kName, kNameLength - 1));
  EXPECT_EQ(kStatusNoDispatcher, deliver(kName, kNameLength + 1));
  EXPECT_EQ(kStatusNoDispatcher, deliver("nTEST://nEchO", kNameLength));
  EXPECT_EQ(kStatusNoDispatcher, deliver(kName, 0));
  EXPECT_EQ(kStatusNoDispatcher, deliver(nullptr, 0));
  EXPECT_EQ(kStatusNoDispatcher, deliver(nullptr, kNameLength));
  EXPECT_EQ(kStatusNoDispatcher, deliver(kName, ~size_t{0}));
  EXPECT_EQ(0, deliver("nTEST://nEcho and more", kNameLength));
}

TEST(Dispatchers, HaveANameOfOneTo127Characters) {
  char name[iLib::kMaxNameLength + 2];
  __builtin_memset(name, 'n', sizeof(name));
  name[iLib::kMaxNameLength + 1] = '\0';
  EXPECT_EQ(kStatusBadArgument, tEcho(name).status);
  EXPECT_EQ(0, tEcho(name + 1).status);
  EXPECT_EQ(0, tEcho(name + iLib::kMaxNameLength).status);
  EXPECT_EQ(kStatusBadArgument, tEcho("").status);
  EXPECT_EQ(kStatusBadArgument, tEcho(nullptr).status);
}

TEST(Dispatchers, OfTheLongestNameAreReached) {
  char name[iLib::kMaxNameLength + 1];
  __builtin_memset(name, 'n', sizeof(name));
  name[iLib::kMaxNameLength] = '\0';
  tModule module;
  tEcho const echo(name);
  module.open();
  EXPECT_EQ(0, deliver(name, iLib::kMaxNameLength));
  EXPECT_EQ(kStatusNoDispatcher, deliver(name, iLib::kMaxNameLength + 1));
}

TEST(Dispatchers, HaveANameOfTheirOwn) {
  tEcho echo;
  tEcho second;
  EXPECT_EQ(kStatusBadArgument, second.status);
  EXPECT_EQ(0, second.withdraw());
  i32 status = 0;
  iLib::exportDispatcher(echo, status);
  EXPECT_EQ(kStatusBadArgument, status);
  echo.withdraw();
  EXPECT_EQ(0, tEcho().status);
}

TEST(Dispatchers, KeepAnEarlierError) {
  tModule module;
  tEcho echo;
  module.open();
  i32 status = -1;
  iLib::deliver(kName, kNameLength, 1, status);
  EXPECT_EQ(-1, status);
  EXPECT_EQ(0u, echo.requests);
  iLib::unexportDispatcher(echo, status);
  EXPECT_EQ(-1, status);
  EXPECT_EQ(kStatusNoDispatcher, deliver());
  iLib::exportDispatcher(echo, status);
  EXPECT_EQ(-1, status);
  EXPECT_EQ(0, tEcho().status);
}

TEST(Dispatchers, LeaveAWarningAlone) {
  tModule module;
  tEcho echo;
  module.open();
  i32 status = 5;
  iLib::deliver(kName, kNameLength, 1, status);
  iLib::unexportDispatcher(echo, status);
  iLib::exportDispatcher(echo, status);
  EXPECT_EQ(5, status);
}

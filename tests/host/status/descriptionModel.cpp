// Random operations on descriptions and on a model of them, a vector of pairs.

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "oxdiagk/statusCodes.h"
#include "oxdiagk/tIntrinsicTypeReportable.h"
#include "oxdiagk/tStatus2.h"
#include "oxdiagk/tStatus2Description.h"
#include "oxdiagk/tTitleReportable.h"
#include "oxdiagk/tWhiteSpaceReportable.h"
#include "qelmk/dynamicCast.h"
#include "qelmk/tBinaryObjectReader.h"
#include "qelmk/tBinaryObjectWriter.h"
#include "support/heapRecord.h"
#include "support/tItemTranslator.h"
#include "trace/startedModules.h"

using nOXDIAG100::kStatusIndexOutOfRange;
using nOXDIAG100::tIntrinsicTypeReportable;
using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Description;
using nOXDIAG100::tTitleReportable;
using nOXDIAG100::tWhiteSpaceReportable;
using nQELM100::tBinaryObjectReader;
using nQELM100::tBinaryObjectWriter;
using nQELM100::tClass;

namespace {

constexpr u32 kOperations = 24'000;
constexpr u32 kComparisonInterval = 16;

using tNumber = tIntrinsicTypeReportable<i32>;
using tWord = tIntrinsicTypeReportable<u32>;

struct tModelItem {
  enum tKind : u32 { kTitle, kWhiteSpace, kNumber, kWord };

  i32 usageType;
  tKind kind;
  i32 value;  // 0 for the first two kinds

  bool operator==(tModelItem const& other) const = default;
};
using tModel = std::vector<tModelItem>;

tClass classOf(tModelItem::tKind kind) {
  i32 status = 0;
  switch (kind) {
    case tModelItem::kTitle:
      return tTitleReportable::staticGetClass(status);
    case tModelItem::kWhiteSpace:
      return tWhiteSpaceReportable::staticGetClass(status);
    case tModelItem::kNumber:
      return tNumber::staticGetClass(status);
    default:
      return tWord::staticGetClass(status);
  }
}

std::string reportOf(tModel const& model) {
  std::string report;
  for (tModelItem const& item : model) {
    std::string text = "<" + std::to_string(item.usageType) + ">";
    // Every value asks for the title operation, in front of its text.
    if (item.kind != tModelItem::kWhiteSpace) text = "[" + text + "]";
    if (item.kind >= tModelItem::kNumber) text += std::to_string(item.value);
    report += (&item == model.data() ? "" : "; ") + text;
  }
  return report;
}

std::string reportOf(tStatus2Description const& description) {
  _STL::wstring output;
  tStatus2 status;
  description.generateReport(tItemTranslator(), output, status);
  EXPECT_EQ(status.getCode(), 0);
  std::string text;
  for (wchar_t character : output) text.push_back(static_cast<char>(character));
  return text;
}

// One description with its model. Usage types and values are few, so that equal ones are many.
class tPair {
 public:
  explicit tPair(u32 seed) : random(seed), description(new tStatus2Description) {}
  ~tPair() { delete description; }
  tPair(tPair const&) = delete;
  tPair& operator=(tPair const&) = delete;

  void operate() {
    switch (below(20)) {
      case 0:
        return makeEmpty();
      case 1:
      case 2:
        return cloneAndGoOn();
      case 3:
      case 4:
        return writeAndReadBack();
      case 5:
      case 6:
        return search();
      case 7:
      case 8:
      case 9:
        return remove();
      case 10:
      case 11:
        return replace();
      case 12:
      case 13:
      case 14:
        return insert();
      default:
        return add();
    }
  }

  void compare() const {
    tStatus2 status;
    ASSERT_EQ(description->getNumberOfReportItems(status), model.size());
    for (u32 index = 0; index != model.size(); ++index) {
      ASSERT_EQ(description->getUsageTypeAtIndex(index, status), model[index].usageType);
      _STL::string name;
      description->getReportableClassNameAtIndex(index, name, status);
      ASSERT_STREQ(name.c_str(), classOf(model[index].kind).getName());
    }
    ASSERT_EQ(status.getCode(), 0);
    ASSERT_EQ(reportOf(*description), reportOf(model));
  }

  bool isEqualTo(tPair const& other) const { return *description == *other.description; }
  bool hasModelOf(tPair const& other) const { return model == other.model; }

 private:
  u32 below(u32 limit) { return static_cast<u32>(random() % limit); }

  // Mostly one that is there, sometimes one at the end or far behind it.
  u32 pickIndex() {
    if (below(50) == 0) return static_cast<u32>(random());
    return below(static_cast<u32>(model.size()) + 1);
  }

  tModelItem pickItem() {
    tModelItem item = {static_cast<i32>(below(5)), static_cast<tModelItem::tKind>(below(4)), 0};
    if (item.kind >= tModelItem::kNumber) item.value = static_cast<i32>(below(3));
    return item;
  }

  // Hands a reportable of the item's kind to `use`.
  template <class Use>
  static void withReportable(tModelItem const& item, tStatus2& status, Use use) {
    switch (item.kind) {
      case tModelItem::kTitle:
        return use(tTitleReportable());
      case tModelItem::kWhiteSpace:
        return use(tWhiteSpaceReportable());
      case tModelItem::kNumber:
        return use(tNumber(item.value, status));
      default:
        return use(tWord(static_cast<u32>(item.value), status));
    }
  }

  void expectOutcome(tStatus2 const& status, bool isInRange) const {
    ASSERT_EQ(status.getCode(), isInRange ? 0 : kStatusIndexOutOfRange);
  }

  void add() {
    tStatus2 status;
    tModelItem item = pickItem();
    if (item.kind == tModelItem::kTitle) {
      description->addHeader(item.usageType, status);
    } else if (item.kind == tModelItem::kWhiteSpace) {
      description->addNewline(status);
      item.usageType = 223;
    } else {
      withReportable(item, status, [&](auto const& reportable) {
        description->addReportItem(item.usageType, reportable, status);
      });
    }
    model.push_back(item);
    expectOutcome(status, true);
  }

  void insert() {
    tStatus2 status;
    tModelItem const item = pickItem();
    u32 const index = pickIndex();
    withReportable(item, status, [&](auto const& reportable) {
      description->insertReportItemAtIndex(index, item.usageType, reportable, status);
    });
    model.insert(model.begin() + std::min<i64>(index, static_cast<i64>(model.size())), item);
    expectOutcome(status, true);
  }

  void replace() {
    tStatus2 status;
    tModelItem const item = pickItem();
    u32 const index = pickIndex();
    withReportable(item, status, [&](auto const& reportable) {
      description->replaceReportItemAtIndex(index, item.usageType, reportable, status);
    });
    bool const isInRange = index < model.size();
    if (isInRange) model[index] = item;
    expectOutcome(status, isInRange);
  }

  void remove() {
    tStatus2 status;
    u32 const index = pickIndex();
    description->removeReportItemAtIndex(index, status);
    bool const isInRange = index < model.size();
    if (isInRange) model.erase(model.begin() + index);
    expectOutcome(status, isInRange);
  }

  void makeEmpty() {
    tStatus2 status;
    if (below(4) != 0) return;
    description->makeEmpty(status);
    model.clear();
    expectOutcome(status, true);
  }

  template <class Matches>
  std::optional<u32> findInModel(u32 start, Matches matches) const {
    for (u32 index = start; index < model.size(); ++index) {
      if (matches(model[index])) return index;
    }
    return std::nullopt;
  }

  void search() {
    u32 const start = pickIndex();
    tModelItem const wanted = pickItem();
    tStatus2 status;
    auto const usage = findInModel(
        start, [&](tModelItem const& item) { return item.usageType == wanted.usageType; });
    auto const kind =
        findInModel(start, [&](tModelItem const& item) { return item.kind == wanted.kind; });
    constexpr u32 kUntouched = 0xFFFFFFFF;
    u32 found[3] = {kUntouched, kUntouched, kUntouched};
    u32 const results[3] = {
        description->findMatchingUsageType(wanted.usageType, found[0], status, start),
        description->findMatchingReportable(classOf(wanted.kind), found[1], status, start),
        description->findMatchingReportable(_STL::string(classOf(wanted.kind).getName()), found[2],
                                            status, start)};
    for (u32 i = 0; i != 3; ++i) {
      auto const& expected = i == 0 ? usage : kind;
      ASSERT_EQ(results[i], expected.has_value() ? 1u : 0u);
      ASSERT_EQ(found[i], expected.value_or(kUntouched));
    }
    expectOutcome(status, true);
  }

  void takeOver(nQELM100::tObject* object) {
    auto* const other = nQELM100::dynamicCast<tStatus2Description>(object);
    ASSERT_NE(other, nullptr);
    ASSERT_TRUE(*other == *description);
    delete std::exchange(description, other);
  }

  void cloneAndGoOn() {
    i32 code = 0;
    takeOver(description->clone(code));
    ASSERT_EQ(code, 0);
  }

  void writeAndReadBack() {
    i32 code = 0;
    tBinaryObjectWriter counter(nullptr, 0);
    counter.writeObject(description, code);
    std::vector<u8> bytes(counter.getSize());
    tBinaryObjectWriter writer(bytes.data(), bytes.size());
    writer.writeObject(description, code);
    writer.finish(code);
    tBinaryObjectReader reader(bytes.data(), bytes.size(), code);
    takeOver(reader.readObject(code));
    ASSERT_EQ(code, 0);
  }

  std::mt19937 random;
  tStatus2Description* description;
  tModel model;
};

}  // namespace

TEST(DescriptionModel, RandomOperationsDoWhatTheModelDoes) {
  {
    tPair pair(20261121);
    for (u32 i = 0; i != kOperations; ++i) {
      pair.operate();
      if (i % kComparisonInterval == 0) pair.compare();
      if (testing::Test::HasFatalFailure()) FAIL() << "in operation " << i;
    }
  }
  EXPECT_TRUE(isHeapUnused());
}

TEST(DescriptionModel, DescriptionsAreEqualWhenTheirModelsAre) {
  u32 equal = 0;
  for (u32 seed = 0; seed != 2'000; ++seed) {
    tPair left(2 * seed);
    tPair right(2 * seed + 1);
    for (u32 i = 0; i != 2; ++i) {
      left.operate();
      right.operate();
    }
    ASSERT_EQ(left.isEqualTo(right), left.hasModelOf(right)) << "seed " << seed;
    equal += left.hasModelOf(right) ? 1 : 0;
  }
  EXPECT_GT(equal, 100u);
  EXPECT_LT(equal, 1'900u);
}

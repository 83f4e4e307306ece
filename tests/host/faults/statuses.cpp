// Statuses, their descriptions, reportables of every class, and their streams.

#include <gtest/gtest.h>

#define OXDIAG_COMPONENT "faults"

#include "faults/tScenario.h"
#include "oxdiagk/statusMacros.h"
#include "oxdiagk/tReportItem.h"
#include "oxdiagk/tStatus2Description.h"
#include "oxdiagk/tStatus2Heap.h"
#include "oxdiagk/tWideTextList.h"
#include "qelmk/dynamicCast.h"
#include "qelmk/tBinaryObjectReader.h"
#include "qelmk/tBinaryObjectWriter.h"
#include "support/callerCodes.h"
#include "support/reportableSamples.h"
#include "support/tTestTranslator.h"
#include "trace/startedModules.h"

namespace {

using namespace nOXDIAG100;
using nQELM100::tBinaryObjectReader;
using nQELM100::tBinaryObjectWriter;
using nQELM100::tObject;

using tNumber = tIntrinsicTypeReportable<i32>;

// What an operation writes, or what an object writes of itself, as a stream.
template <class Write>
std::string streamOf(Write write) {
  u8 bytes[2048];
  i32 code = 0;
  tBinaryObjectWriter writer(bytes, sizeof(bytes));
  write(writer, code);
  writer.finish(code);
  EXPECT_EQ(code, 0);
  return std::string(reinterpret_cast<char const*>(bytes), writer.getSize());
}

template <class T>
std::string contentOf(T const& object) {
  return streamOf(
      [&](tBinaryObjectWriter& writer, i32& code) { object.writeExternal(writer, code); });
}

// Reads once with a fresh reader. Returns the name of the code.
template <class Read>
std::string readFrom(std::string const& stream, Read read) {
  i32 code = 0;
  tBinaryObjectReader reader(stream.data(), stream.size(), code);
  read(reader, code);
  return nameOfCode(code);
}

std::string nameOf(tStatus2 const& status) {
  return nameOfCode(status.getCode());
}

void addNumbers(tStatus2Description& description, i32 count) {
  tStatus2 status;
  for (i32 number = 1; number <= count; ++number) {
    description.addReportItem(number, tNumber(number, status), status);
  }
  EXPECT_EQ(status.getCode(), 0);
}

// But for the call stack, which depends on who calls.
std::string stateOf(tStatus2 const& status) {
  std::string text = std::to_string(status.getCode()) + " " + status.getComponentName() + " " +
                     status.getFileName();
  iStatus2Description const* const description = status.getDescription();
  return description == nullptr ? text : text + " " + contentOf(*description);
}

// A description of four items: the next one makes the list grow.
struct tDescribed {
  tDescribed() { addNumbers(description, 4); }

  tStatus2Description description;
};

std::string stateOf(tDescribed& on) {
  return contentOf(on.description);
}

// A warning with a description, which a copy shares.
struct tStatuses {
  tStatuses() {
    addNumbers(description, 2);
    OXDIAG_SET_STATUS_WITH_DESCRIPTION(former, kWarning, description);
    status = former;
  }

  tStatus2Description description;
  tStatus2 former;
  tStatus2 status;
};

std::string stateOf(tStatuses& on) {
  return stateOf(on.former);
}

// Without a description.
struct tBareStatuses {
  explicit tBareStatuses() {
    addNumbers(description, 2);
    OXDIAG_SET_STATUS(detailed, kError);
  }

  tStatus2Description description;
  tStatus2 detailed;
  tStatus2 plain{kError};
};

template <class tSubject, class Run>
tScenarioRow row(std::string name, char const* header, std::vector<std::string> answers, Run run) {
  return rowOf<tSubject>(std::move(name), header, std::move(answers), run,
                         [](tSubject& subject) { return stateOf(subject); });
}

tScenarioRow changing(tScenarioRow row) {
  row.changing = row.answers;
  return row;
}

// An error and a warning are set on a status without any; what shares the former detail keeps it.
std::string setError(tStatuses& on) {
  on.status = tStatus2();
  OXDIAG_SET_STATUS(on.status, kError);
  EXPECT_EQ(on.status.getCode(), kError);
  return on.status.hasDetail() ? kDone : "without detail";
}

std::string setWarning(tStatuses& on) {
  on.status = tStatus2();
  OXDIAG_SET_STATUS(on.status, kWarning);
  EXPECT_EQ(on.status.hasDetail(), on.status.getCode() == kWarning);
  return on.status.hasDetail() ? kDone : nameOf(on.status);
}

std::string setDescribed(tStatuses& on) {
  on.status = on.former;
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(on.status, kError, on.description);
  EXPECT_EQ(on.status.getCode(), kError);
  if (!on.status.hasDetail()) return "without detail";
  return on.status.getDescription() != nullptr ? kDone : "without description";
}

std::vector<tScenarioRow> rowsOfStatuses() {
  auto const detailed = [](tBareStatuses& on) { return stateOf(on.detailed); };
  auto const plain = [](tBareStatuses& on) {
    return on.plain.getDescription() == nullptr ? std::string("plain") : stateOf(on.plain);
  };
  return {
      row<tStatuses>("SetError", "oxdiagk/tStatus2.h", {"without detail"}, setError),
      row<tStatuses>("SetWarning", "oxdiagk/statusMacros.h", {"kStatusOutOfMemory"}, setWarning),
      row<tStatuses>("SetDescribed", "oxdiagk/tStatus2.h",
                     {"without detail", "without description"}, setDescribed),
      rowOf<tBareStatuses>(
          "DescribeDetail", "oxdiagk/tStatus2.h", {"0"},
          [](tBareStatuses& on) {
            return on.detailed.setDescription(on.description) == 1 ? std::string(kDone) : "0";
          },
          detailed),
      rowOf<tBareStatuses>(
          "DescribePlain", "oxdiagk/tStatus2.h", {"0"},
          [](tBareStatuses& on) {
            return on.plain.setDescription(on.description) == 1 ? std::string(kDone) : "0";
          },
          plain),
  };
}

// A stream of a described status, and a status that it replaces.
struct tReadStatus {
  tReadStatus() {
    tStatuses const written;
    stream = contentOf(written.former);
  }

  std::string stream;
  tStatus2 status;
};

std::string stateOf(tReadStatus& on) {
  return stateOf(on.status);
}

std::string readStatus(tReadStatus& on) {
  std::string const answer = readFrom(on.stream, [&](tBinaryObjectReader& reader, i32& code) {
    on.status.readExternal(reader, code);
  });
  if (answer != kDone) return on.status.hasDetail() ? answer : answer + " without detail";
  return on.status.hasDetail() ? kDone : nameOf(on.status) + " without detail";
}

std::vector<tScenarioRow> rowsOfStreams() {
  return {
      changing(row<tReadStatus>("ReadStatus", "oxdiagk/tStatus2.h",
                                {"kStatusOutOfMemory", "kStatusOutOfMemory without detail"},
                                readStatus)),
  };
}

template <class Change>
tScenarioRow descriptionRow(char const* name, Change change) {
  return row<tDescribed>(name, "oxdiagk/tStatus2Description.h", {"kStatusOutOfMemory"},
                         [change](tDescribed& on) {
                           tStatus2 status;
                           change(on.description, status);
                           return nameOf(status);
                         });
}

// Clones of whatever can be cloned, destroyed at once.
std::string cloneOf(nQELM100::iCloneable const& original) {
  i32 code = 0;
  tObject* const clone = original.clone(code);
  EXPECT_EQ(clone == nullptr, code < 0);
  nQELM100::destroyThroughClass(clone);
  return nameOfCode(code);
}

std::string makeDescription(tDescribed&) {
  tStatus2 status;
  tStatus2Description const description(status);
  return nameOf(status);
}

// A description, and the stream of a longer one.
struct tReadDescription : tDescribed {
  tReadDescription() {
    tStatus2Description other;
    addNumbers(other, 6);
    stream = contentOf(other);
  }

  std::string stream;
};

std::string readDescription(tReadDescription& on) {
  return readFrom(on.stream, [&](tBinaryObjectReader& reader, i32& code) {
    on.description.readExternal(reader, code);
  });
}

std::string reportDescription(tDescribed& on) {
  tStatus2 status;
  _STL::wstring text;
  on.description.generateReport(tTestTranslator(), text, status);
  return nameOf(status);
}

// Whose name is read over.
struct tNamed : tDescribed {
  _STL::string name{"former"};
};

std::string stateOf(tNamed& on) {
  return on.name.c_str();
}

std::string nameClass(tNamed& on) {
  tStatus2 status;
  on.description.getReportableClassNameAtIndex(0, on.name, status);
  return nameOf(status);
}

std::vector<tScenarioRow> rowsOfDescriptions() {
  char const* const header = "oxdiagk/tStatus2Description.h";
  return {
      descriptionRow("Insert",
                     [](tStatus2Description& description, tStatus2& status) {
                       tStatus2 own;
                       description.insertReportItemAtIndex(1, 9, tNumber(9, own), status);
                     }),
      descriptionRow("Replace",
                     [](tStatus2Description& description, tStatus2& status) {
                       tStatus2 own;
                       description.replaceReportItemAtIndex(1, 9, tNumber(9, own), status);
                     }),
      descriptionRow("AddHeader", [](tStatus2Description& description,
                                     tStatus2& status) { description.addHeader(9, status); }),
      descriptionRow("AddNewline", [](tStatus2Description& description,
                                      tStatus2& status) { description.addNewline(status); }),
      row<tDescribed>("MakeDescription", header, {"kStatusOutOfMemory"}, makeDescription),
      row<tDescribed>("CloneDescription", header, {"kStatusClassMismatch", "kStatusOutOfMemory"},
                      [](tDescribed& on) { return cloneOf(on.description); }),
      changing(row<tReadDescription>("ReadDescription", header, {"kStatusOutOfMemory"},
                                     readDescription)),
      row<tDescribed>("ReportDescription", header, {"kStatusOutOfMemory"}, reportDescription),
      row<tNamed>("NameClass", header, {"kStatusOutOfMemory"}, nameClass),
  };
}

// An item, and another one with more values.
struct tItems {
  tItems() {
    tStatus2 status;
    item = tReportItem(5, tNumber(5, status), status);
    other = tReportItem(6, tNumber(listOf<i32>(6, 7), status), status);
    stream = contentOf(other);
  }

  tReportItem item;
  tReportItem other;
  std::string stream;
};

std::string stateOf(tItems& on) {
  return contentOf(on.item);
}

std::string assignItem(tItems& on) {
  on.item = on.other;
  bool const isDone = contentOf(on.item) == on.stream;
  EXPECT_TRUE(isDone || on.item.hasFailed());
  return isDone ? kDone : "hasFailed";
}

std::string makeItem(tItems& on) {
  tStatus2 status;
  tReportItem const made(6, *on.other.getReportable(), status);
  EXPECT_EQ(made.getReportable() == nullptr, status.isError());
  return nameOf(status);
}

std::string readWholeItem(tItems& on) {
  return readFrom(on.stream, [&](tBinaryObjectReader& reader, i32& code) {
    on.item.readExternal(reader, code);
  });
}

std::vector<tScenarioRow> rowsOfItems() {
  char const* const header = "oxdiagk/tReportItem.h";
  std::vector<std::string> const either = {"kStatusClassMismatch", "kStatusOutOfMemory"};
  return {
      row<tItems>("AssignItem", header, {"hasFailed"}, assignItem),
      row<tItems>("MakeItem", header, {"kStatusOutOfMemory"}, makeItem),
      row<tItems>("CloneItem", header, either, [](tItems& on) { return cloneOf(on.other); }),
      row<tItems>("ReadItem", "qelmk/tBinaryObjectReader.h", {"kStatusOutOfMemory"}, readWholeItem),
  };
}

// A reportable with values, and others of its class.
template <class T>
struct tValues {
  tValues() : other(contentOf(tClassTag<T>::other())) {}

  T one = tClassTag<T>::one();
  tDescribed described;
  std::string other;
};

template <class T>
std::string stateOf(tValues<T>& on) {
  return contentOf(on.one) + stateOf(on.described);
}

template <class T>
std::string addItem(tValues<T>& on) {
  tStatus2 status;
  on.described.description.addReportItem(9, on.one, status);
  return nameOf(status);
}

template <class T>
std::string readItem(tValues<T>& on) {
  return readFrom(
      on.other, [&](tBinaryObjectReader& reader, i32& code) { on.one.readExternal(reader, code); });
}

// nOXDIAG100::tBoundedRangeReportable<i32> -> tBoundedRangeReportable_i32
std::string shortNameOf(std::string const& name) {
  std::string text = name.substr(name.find("::") + 2);
  std::string short_;
  for (char const each : text) {
    if (isalnum(each) != 0) short_ += each;
    if (each == '<') short_ += '_';
  }
  return short_;
}

// Lists of more than one value, and texts of any length, need memory of their own.
template <class T>
bool needsMemory() {
  tValues<T> values;
  ntoshost::watchCalls(ntoshost::kFaultMemory);
  readItem(values);
  u64 const calls = ntoshost::fallibleCallsSeen();
  ntoshost::clearFaults();
  return calls != 0;
}

}  // namespace

class StatusesThatFail : public testing::TestWithParam<tScenarioRow> {};

TEST_P(StatusesThatFail, KeepWhatWasThere) {
  runScenario(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Status, StatusesThatFail, testing::ValuesIn(rowsOfStatuses()), nameOfRow);
INSTANTIATE_TEST_SUITE_P(Stream, StatusesThatFail, testing::ValuesIn(rowsOfStreams()), nameOfRow);
INSTANTIATE_TEST_SUITE_P(Description, StatusesThatFail, testing::ValuesIn(rowsOfDescriptions()),
                         nameOfRow);

INSTANTIATE_TEST_SUITE_P(Item, StatusesThatFail, testing::ValuesIn(rowsOfItems()), nameOfRow);

TEST(ReportablesThatFail, KeepWhatWasThere) {
  visitReportables([](auto tag) {
    using tReportable = typename decltype(tag)::tReportable;
    using tSubject = tValues<tReportable>;
    std::string const name = shortNameOf(tSample<tReportable>::kName);
    runScenario(row<tSubject>("Add" + name, "oxdiagk/tStatus2Description.h", {"kStatusOutOfMemory"},
                              addItem<tReportable>));
    bool const hasList = needsMemory<tReportable>();
    std::vector<std::string> codes = {"kStatusClassMismatch"};
    if (hasList) codes.push_back("kStatusOutOfMemory");
    runScenario(row<tSubject>("Clone" + name, "oxdiagk/reportableClass.h", codes,
                              [](tSubject& on) { return cloneOf(on.one); }));
    if (!hasList) return;
    runScenario(row<tSubject>("Read" + name, "oxdiagk/reportableLists.h", {"kStatusOutOfMemory"},
                              readItem<tReportable>));
  });
}

// A full heap, or none, is nothing to them.
TEST(StatusesThatShare, NothingOfThemCanFail) {
  tStatuses on;
  char text[tStatus2::kMaxTextSize];
  ntoshost::watchCalls(~ntoshost::kFaultUserCopy);
  {
    tStatus2 const copy(on.former);
    on.status = copy;
    on.status.toString(text, sizeof(text));
    EXPECT_NE(contentOf(on.status), "");
  }
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 0u);
}

namespace {

// Four texts, of which the next one makes the list grow; two that are read over; what to read and
// to add.
struct tTexts {
  tTexts() {
    list.push_back(_STL::wstring(L"one"));
    list.push_back(_STL::wstring(L"two"));
    list.push_back(_STL::wstring(L"three"));
    list.push_back(_STL::wstring(L"four"));
    tStatus2 status;
    tNumber const number(listOf<i32>(1, 2), status);
    object = streamOf(
        [&](tBinaryObjectWriter& writer, i32& code) { writer.writeObject(&number, code); });
    narrowText = streamOf([](tBinaryObjectWriter& writer, i32& code) {
      writer.writeString(_STL::string("longer than the former"), code);
    });
    wideText = streamOf([](tBinaryObjectWriter& writer, i32& code) {
      writer.writeWideString(_STL::wstring(L"longer than the former"), code);
    });
  }

  tWideTextList list;
  _STL::string text{"former"};
  _STL::wstring wide{L"former"};
  _STL::wstring const next{L"a text for which the list has no room, as those before are short"};
  std::string object;
  std::string narrowText;
  std::string wideText;
};

// With a text behind the others, which is found where they end.
std::string stateOf(tTexts& on) {
  std::string all = on.text.c_str();
  tWideTextList longer(on.list);
  longer.push_back(_STL::wstring(L"!"));
  for (_STL::wstring const& each : longer) {
    for (size_t index = 0; index < each.size(); ++index) all += static_cast<char>(each[index]);
  }
  for (size_t index = 0; index < on.wide.size(); ++index) all += static_cast<char>(on.wide[index]);
  return all;
}

std::string answer(bool isDone) {
  return isDone ? kDone : "false";
}

std::string readText(tTexts& on) {
  return readFrom(on.narrowText, [&](tBinaryObjectReader& reader, i32& code) {
    reader.readString(on.text, code);
  });
}

std::string readWideText(tTexts& on) {
  return readFrom(on.wideText, [&](tBinaryObjectReader& reader, i32& code) {
    reader.readWideString(on.wide, code);
  });
}

std::string readObject(tTexts& on) {
  return readFrom(on.object, [](tBinaryObjectReader& reader, i32& code) {
    nQELM100::destroyThroughClass(reader.readObject(code));
  });
}

std::string takeBlock(tTexts&) {
  i32 code = 0;
  i32 ignored = 0;
  tStatus2Heap* const heap = tStatus2Heap::getHeap(ignored);
  void* const block = heap->allocateMemoryBlock(240, code);
  EXPECT_EQ(block == nullptr, code < 0);
  if (block != nullptr) heap->releaseMemoryBlock(block, ignored);
  return nameOfCode(code);
}

std::vector<tScenarioRow> rowsOfTexts() {
  return {
      row<tTexts>("ReadText", "qelmk/iObjectReader.h", {"kStatusOutOfMemory"}, readText),
      row<tTexts>("ReadWideText", "qelmk/iObjectReader.h", {"kStatusOutOfMemory"}, readWideText),
      row<tTexts>("ReadObject", "qelmk/tBinaryObjectReader.h", {"kStatusOutOfMemory"}, readObject),
      row<tTexts>("TakeBlock", "oxdiagk/tStatus2Heap.h", {"kStatusHeapFull"}, takeBlock),
      row<tTexts>("AddWideText", "oxdiagk/tWideTextList.h", {"false"},
                  [](tTexts& on) { return answer(on.list.push_back(on.next)); }),
  };
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Text, StatusesThatFail, testing::ValuesIn(rowsOfTexts()), nameOfRow);

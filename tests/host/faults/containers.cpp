// The containers of _STL when they grow.

#include <gtest/gtest.h>

#include "faults/tScenario.h"
#include "stl/list.h"
#include "stl/map.h"
#include "stl/single_vector.h"
#include "stl/string.h"
#include "stl/vector.h"
#include "trace/startedModules.h"

namespace {

using _STL::string;

constexpr char kLong[] = "a text that lies in no place of the string's own";

std::string contentOf(u32 number) {
  return std::to_string(number) + " ";
}

std::string contentOf(string const& text) {
  return std::string(text.c_str(), text.size()) + " ";
}

template <class K, class V>
std::string contentOf(_STL::map<K, V> const& map) {
  std::string all;
  for (auto const& entry : map) all += contentOf(entry.key) + "= " + contentOf(entry.value);
  return all;
}

template <class tList>
std::string contentOf(tList const& list) {
  std::string all;
  for (auto const& each : list) all += contentOf(each);
  return all;
}

// Filled up, so that the next element needs memory; `more` is what comes, `other` another one.
template <class tContainer>
struct tFilled {
  tFilled();

  tContainer container;
  tContainer other;
  string more{kLong};
};

void fill(_STL::vector<u32>& numbers) {
  u32 const values[] = {1, 2, 3};
  numbers.assign(values, 3);
}

void fill(_STL::single_vector<u32>& numbers) {
  numbers.push_back(1);
}

void fill(string& text) {
  text.assign("former");
}

void fill(_STL::vector<string>& texts) {
  string const values[] = {string("one"), string("two")};
  texts.assign(values, 2);
}

void fill(_STL::list<string>& texts) {
  texts.push_back(string("one"));
}

void fill(_STL::map<string, string>& texts) {
  texts.insert(string("one"), string("eins"));
}

// More than the first one has room for.
template <class tContainer>
tFilled<tContainer>::tFilled() {
  fill(container);
  fill(other);
  if constexpr (requires { other.append(kLong); }) other.append(kLong);
  if constexpr (requires { other.push_back(u32{9}); }) other.push_back(u32{9});
  if constexpr (requires { other.push_back(more); }) other.push_back(more);
  if constexpr (requires { other.insert(more, more); }) other.insert(more, more);
}

template <class tContainer>
std::string stateOf(tFilled<tContainer>& on) {
  return contentOf(on.container) + "other " + contentOf(on.other);
}

// What the operation says. A container remembers its failures, until it is told to forget them.
template <class tContainer>
std::string answer(tContainer& container, bool isDone) {
  EXPECT_TRUE(isDone || container.hasFailed());
  if constexpr (requires { container.clearFailure(); }) {
    EXPECT_EQ(container.hasFailed(), !isDone);
    container.clearFailure();
  }
  return isDone ? kDone : "false";
}

template <class tContainer, class Change>
tScenarioRow growthRow(std::string name, char const* header, Change change) {
  using tSubject = tFilled<tContainer>;
  return rowOf<tSubject>(
      std::move(name), header, {"false"},
      [change](tSubject& on) { return answer(on.container, change(on)); },
      [](tSubject& on) { return stateOf(on); });
}

// By assignment, which returns nothing.
template <class tContainer>
tScenarioRow assignmentRow(std::string name, char const* header) {
  return growthRow<tContainer>(std::move(name), header, [](tFilled<tContainer>& on) {
    on.container = on.other;
    return contentOf(on.container) == contentOf(on.other);
  });
}

// By a copy, which is empty when it fails.
template <class tContainer>
tScenarioRow copyRow(std::string name, char const* header) {
  using tSubject = tFilled<tContainer>;
  return rowOf<tSubject>(
      std::move(name), header, {"empty"},
      [](tSubject& on) {
        tContainer const copy(on.other);
        bool const hasFailed = copy.hasFailed();
        EXPECT_EQ(contentOf(copy), hasFailed ? contentOf(tContainer()) : contentOf(on.other));
        return std::string(hasFailed ? "empty" : kDone);
      },
      [](tSubject& on) { return stateOf(on); });
}

template <class tContainer>
std::vector<tScenarioRow> copyRows(char const* header) {
  return {assignmentRow<tContainer>("Assignment", header), copyRow<tContainer>("Copy", header)};
}

std::vector<tScenarioRow> rowsOfTexts() {
  using tText = tFilled<string>;
  char const* const header = "stl/basic_string.h";
  return {
      growthRow<string>("Append", header, [](tText& on) { return on.container.append(on.more); }),
      growthRow<string>("AppendText", header,
                        [](tText& on) { return on.container.append(on.other); }),
      growthRow<string>("AssignText", header,
                        [](tText& on) { return on.container.assign(on.more); }),
      growthRow<string>("InsertText", header,
                        [](tText& on) { return on.container.insert(1, on.more.c_str()); }),
      growthRow<string>("ReserveText", header,
                        [](tText& on) { return on.container.reserve(1000); }),
      growthRow<string>("ResizeText", header,
                        [](tText& on) { return on.container.resize(1000, 'x'); }),
  };
}

std::vector<tScenarioRow> rowsOfVectors() {
  using tNumbers = tFilled<_STL::vector<u32>>;
  using tTexts = tFilled<_STL::vector<string>>;
  using tSingle = tFilled<_STL::single_vector<u32>>;
  char const* const header = "stl/vector.h";
  return {
      growthRow<_STL::vector<u32>>("AddNumber", header,
                                   [](tNumbers& on) { return on.container.push_back(4); }),
      growthRow<_STL::vector<u32>>("ResizeNumbers", header,
                                   [](tNumbers& on) { return on.container.resize(100); }),
      growthRow<_STL::vector<string>>("AddText", header,
                                      [](tTexts& on) { return on.container.push_back(on.more); }),
      growthRow<_STL::vector<string>>("InsertText", header,
                                      [](tTexts& on) { return on.container.insert(0, on.more); }),
      growthRow<_STL::single_vector<u32>>("AddSecond", "stl/single_vector.h",
                                          [](tSingle& on) { return on.container.push_back(2); }),
  };
}

std::vector<tScenarioRow> rowsOfNodes() {
  using tTexts = tFilled<_STL::list<string>>;
  using tTable = tFilled<_STL::map<string, string>>;
  return {
      growthRow<_STL::list<string>>("AddText", "stl/list.h",
                                    [](tTexts& on) { return on.container.push_back(on.more); }),
      growthRow<_STL::map<string, string>>(
          "AddEntry", "stl/map.h",
          [](tTable& on) { return on.container.insert(on.more, on.more); }),
  };
}

}  // namespace

class ContainersThatFail : public testing::TestWithParam<tScenarioRow> {};

TEST_P(ContainersThatFail, KeepWhatWasThere) {
  runScenario(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Text, ContainersThatFail, testing::ValuesIn(rowsOfTexts()), nameOfRow);
INSTANTIATE_TEST_SUITE_P(Vector, ContainersThatFail, testing::ValuesIn(rowsOfVectors()), nameOfRow);
INSTANTIATE_TEST_SUITE_P(Node, ContainersThatFail, testing::ValuesIn(rowsOfNodes()), nameOfRow);
INSTANTIATE_TEST_SUITE_P(OfText, ContainersThatFail,
                         testing::ValuesIn(copyRows<string>("stl/basic_string.h")), nameOfRow);
INSTANTIATE_TEST_SUITE_P(OfNumbers, ContainersThatFail,
                         testing::ValuesIn(copyRows<_STL::vector<u32>>("stl/vector.h")), nameOfRow);
INSTANTIATE_TEST_SUITE_P(
    OfSingle, ContainersThatFail,
    testing::ValuesIn(copyRows<_STL::single_vector<u32>>("stl/single_vector.h")), nameOfRow);
INSTANTIATE_TEST_SUITE_P(OfTexts, ContainersThatFail,
                         testing::ValuesIn(copyRows<_STL::vector<string>>("stl/vector.h")),
                         nameOfRow);
INSTANTIATE_TEST_SUITE_P(OfList, ContainersThatFail,
                         testing::ValuesIn(copyRows<_STL::list<string>>("stl/list.h")), nameOfRow);
INSTANTIATE_TEST_SUITE_P(OfMap, ContainersThatFail,
                         testing::ValuesIn(copyRows<_STL::map<string, string>>("stl/map.h")),
                         nameOfRow);

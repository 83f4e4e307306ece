#include <algorithm>
#include <map>
#include <string>

#include "modelTest.h"

class StlMapModel : public StlModel {
 protected:
  using tTable = _STL::map<u32, _STL::string>;
  using tModel = std::map<u32, std::string>;

  static bool agree(tTable const& table, tModel const& model) {
    bool same = table.size() == model.size();
    auto at = table.begin();
    for (auto wanted = model.begin(); same && wanted != model.end(); ++wanted, ++at) {
      same = at->key == wanted->first && at->value == wanted->second.c_str();
    }
    return same && at == table.end();
  }

  void insert(tTable& table, tModel& model, u32 key) {
    std::string const fresh = std::to_string(below(1000));
    _STL::string const value(fresh.c_str());
    if (model.count(key) != 0) {
      EXPECT_FALSE(table.insert(key, value));
      EXPECT_FALSE(table.hasFailed());
    } else if (done(table, [&] { return table.insert(key, value); })) {
      model.emplace(key, fresh);
    }
  }

  void step(tTable& table, tModel& model) {
    u32 const key = static_cast<u32>(below(2 * kModelLongest));
    table.clearFailure();
    switch (below(5)) {
      case 0:
      case 1:
        insert(table, model, key);
        break;
      case 2:
        EXPECT_EQ(table.erase(key), model.erase(key) != 0);
        break;
      case 3: {
        auto const wanted = model.find(key);
        _STL::string const* const found = table.find(key);
        ASSERT_EQ(found != nullptr, wanted != model.end());
        EXPECT_TRUE(found == nullptr || *found == wanted->second.c_str());
        break;
      }
      default:
        if (oneOf(8)) {
          copy(table, model);
        }
        break;
    }
  }

  void copy(tTable& table, tModel const& model) {
    tTable target;
    ASSERT_TRUE(target.insert(1000, _STL::string("old")));
    bool const copied = done(target, [&] {
      target = table;
      return !target.hasFailed();
    });
    EXPECT_TRUE(agree(target, copied ? model : tModel{{1000, "old"}}));
    if (copied) {
      table.swap(target);
    }
  }
};

TEST_F(StlMapModel, MapBehavesLikeItsModel) {
  tTable table;
  tModel model;
  for (int count = 0; count < kModelSteps; ++count) {
    step(table, model);
    ASSERT_TRUE(agree(table, model)) << "step " << count << ", map " << content(table);
    ASSERT_FALSE(HasFailure()) << "step " << count;
  }
  EXPECT_GT(faults(), kModelSteps / 200u);
}

TEST_F(StlMapModel, SearchTakesALogarithmicNumberOfSteps) {
  static size_t comparisons;
  struct tCountingOrder {
    bool operator()(u32 const& left, u32 const& right) const noexcept {
      ++comparisons;
      return left < right;
    }
  };
  _STL::map<u32, u32, tCountingOrder> table;
  constexpr u32 kEntries = 1 << 15;
  for (u32 key = 0; key < kEntries; ++key) {
    ASSERT_TRUE(table.insert(key, key));
  }
  size_t worst = 0;
  for (u32 key = 0; key < kEntries; ++key) {
    comparisons = 0;
    ASSERT_EQ(*table.find(key), key);
    worst = std::max(worst, comparisons);
  }
  EXPECT_LE(worst, 2u * 22u) << "1.45 * log2(32770) levels, at most two comparisons each";
}

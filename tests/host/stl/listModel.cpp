#include <iterator>
#include <list>

#include "modelTest.h"

class StlListModel : public StlModel {
 protected:
  using tHandles = _STL::list<u32>;
  using tModel = std::list<u32>;

  static bool agree(tHandles& handles, tModel const& model) {
    bool same = handles.size() == model.size();
    auto at = handles.begin();
    for (auto wanted = model.begin(); same && wanted != model.end(); ++wanted, ++at) {
      same = *at == *wanted;
    }
    auto back = handles.end();
    for (auto wanted = model.rbegin(); same && wanted != model.rend(); ++wanted) {
      same = *--back == *wanted;
    }
    return same && at == handles.end() && back == handles.begin();
  }

  void step(tHandles& handles, tModel& model) {
    u32 const handle = static_cast<u32>(below(10));
    size_t const steps = below(model.size() + 1);
    auto at = handles.begin();
    for (size_t i = 0; i < steps; ++i) ++at;
    auto const place = std::next(model.begin(), static_cast<std::ptrdiff_t>(steps));
    switch (below(7)) {
      case 0:
        if (done(handles, [&] { return handles.push_back(handle); })) model.push_back(handle);
        break;
      case 1:
        if (done(handles, [&] { return handles.push_front(handle); })) model.push_front(handle);
        break;
      case 2:
        if (done(handles, [&] { return handles.insert(at, handle); })) model.insert(place, handle);
        break;
      case 3:
        if (place != model.end()) {
          auto const next = handles.erase(at);
          auto const wanted = model.erase(place);
          EXPECT_EQ(next == handles.end(), wanted == model.end());
        }
        break;
      case 4:
        if (oneOf(4)) {
          EXPECT_EQ(handles.remove(handle), model.remove(handle));
        }
        break;
      case 5: {
        tHandles other(_STL::move(handles));
        EXPECT_TRUE(handles.empty());
        handles.swap(other);
        break;
      }
      default:
        handles.pop_front();
        if (!model.empty()) model.pop_front();
        break;
    }
  }
};

TEST_F(StlListModel, ListBehavesLikeItsModel) {
  tHandles handles;
  tModel model;
  for (int count = 0; count < kModelSteps; ++count) {
    step(handles, model);
    if (model.size() > kModelLongest) {
      handles.clear();
      model.clear();
    }
    ASSERT_TRUE(agree(handles, model)) << "step " << count << ", list " << content(handles);
    ASSERT_FALSE(HasFailure()) << "step " << count;
  }
  EXPECT_GT(faults(), kModelSteps / 200u);
}

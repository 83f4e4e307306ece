#include <algorithm>
#include <string>
#include <vector>

#include "modelTest.h"

class StlVectorModel : public StlModel {
 protected:
  using tTexts = _STL::vector<_STL::string>;
  using tModel = std::vector<std::string>;

  static bool agree(tTexts const& texts, tModel const& model) {
    return std::equal(texts.begin(), texts.end(), model.begin(), model.end(),
                      [](auto const& text, auto const& wanted) { return text == wanted.c_str(); });
  }

  void step(tTexts& texts, tModel& model) {
    std::string const fresh(1 + below(20), static_cast<char>('a' + below(3)));
    _STL::string const text(fresh.c_str());
    _STL::string moved(fresh.c_str());
    size_t const at = below(model.size() + 2);
    size_t const inside = std::min(at, model.size());
    auto const place = model.begin() + static_cast<std::ptrdiff_t>(inside);
    switch (below(8)) {
      case 0:
        if (done(texts, [&] { return texts.push_back(text); })) model.push_back(fresh);
        break;
      case 1:
        if (done(texts, [&] { return texts.insert(at, text); })) model.insert(place, fresh);
        break;
      case 2:
        if (done(texts, [&] { return texts.insert(at, _STL::move(moved)); })) {
          model.insert(place, fresh);
        } else {
          EXPECT_TRUE(moved == text) << "a failure took the value";
        }
        break;
      case 3:
        insertOwn(texts, model);
        break;
      case 4: {
        size_t const count = below(4);
        texts.erase(at, count);
        model.erase(place,
                    place + static_cast<std::ptrdiff_t>(std::min(count, model.size() - inside)));
        break;
      }
      case 5:
        if (done(texts, [&] { return texts.resize(at); })) model.resize(at);
        break;
      case 6:
        copy(texts, model);
        break;
      default:
        texts.pop_back();
        if (!model.empty()) model.pop_back();
        break;
    }
  }

  void insertOwn(tTexts& texts, tModel& model) {
    if (!model.empty()) {
      size_t const from = below(model.size());
      size_t const to = below(model.size() + 1);
      std::string const value = model[from];
      if (done(texts, [&] { return texts.insert(to, texts[from]); })) {
        model.insert(model.begin() + static_cast<std::ptrdiff_t>(to), value);
      }
    }
  }

  void copy(tTexts& texts, tModel const& model) {
    tTexts target;
    ASSERT_TRUE(target.push_back(_STL::string("old")));
    bool const copied = done(target, [&] {
      target = texts;
      return !target.hasFailed();
    });
    EXPECT_TRUE(agree(target, copied ? model : tModel{"old"}));
    if (copied) {
      texts = _STL::move(target);
    }
  }
};

TEST_F(StlVectorModel, VectorOfTextsBehavesLikeItsModel) {
  tTexts texts;
  tModel model;
  for (int count = 0; count < kModelSteps; ++count) {
    step(texts, model);
    if (model.size() > kModelLongest) {
      texts.clear();
      model.clear();
    }
    ASSERT_TRUE(agree(texts, model)) << "step " << count << ", vector " << content(texts);
    ASSERT_FALSE(HasFailure()) << "step " << count;
  }
  EXPECT_GT(faults(), kModelSteps / 200u);
}

#include <algorithm>
#include <iterator>
#include <string>

#include "modelTest.h"

// A text and its model. The model of wide text is made of the same code units; the standard wide
// string cannot be used where wchar_t has two bytes.
template <class C, class Unit>
struct tTextPair {
  _STL::basic_string<C> text;
  std::basic_string<Unit> model;

  bool agree() const {
    return std::basic_string<Unit>(text.begin(), text.end()) == model &&
           text.c_str()[text.size()] == C();
  }
};

class StlTextModel : public StlModel {
 protected:
  template <class C, class Unit>
  void step(tTextPair<C, Unit>& pair) {
    _STL::basic_string<C>& text = pair.text;
    std::basic_string<Unit>& model = pair.model;
    size_t const at = below(model.size() + 3);
    size_t const inside = std::min(at, model.size());
    size_t const count = below(20);
    C fresh[20];
    std::generate(std::begin(fresh), std::end(fresh), [&] { return character<C>(); });
    std::basic_string<Unit> const added(fresh, fresh + count);
    size_t const ownCount = below(model.size() - inside + 1);
    std::basic_string<Unit> const own = model.substr(inside, ownCount);
    C const* const ownText = text.c_str() + inside;
    switch (below(11)) {
      case 0:
        if (done(text, [&] { return text.append(fresh, count); })) model += added;
        break;
      case 1:
        if (done(text, [&] { return text.append(ownText, ownCount); })) model += own;
        break;
      case 2:
        if (done(text, [&] { return text.assign(fresh, count); })) model = added;
        break;
      case 3:
        if (done(text, [&] { return text.assign(ownText, ownCount); })) model = own;
        break;
      case 4:
        if (done(text, [&] { return text.insert(at, fresh, count); })) model.insert(inside, added);
        break;
      case 5: {
        size_t const target = below(model.size() + 1);
        if (done(text, [&] { return text.insert(target, ownText, ownCount); })) {
          model.insert(target, own);
        }
        break;
      }
      case 6:
        text.erase(at, count);
        model.erase(inside, count);
        break;
      case 7:
        if (done(text, [&] { return text.push_back(fresh[0]); })) {
          model.push_back(static_cast<Unit>(fresh[0]));
        }
        break;
      case 8:
        if (done(text, [&] { return text.resize(at, fresh[0]); })) {
          model.resize(at, static_cast<Unit>(fresh[0]));
        }
        break;
      case 9:
        if (done(text, [&] { return text.reserve(at + count); })) {
          EXPECT_GE(text.capacity(), at + count);
        }
        break;
      default:
        startAnew(pair);
        break;
    }
  }

  // Without storage, so that growth happens again and again.
  template <class C, class Unit>
  void startAnew(tTextPair<C, Unit>& pair) {
    if (pair.model.size() > kModelLongest || oneOf(4)) {
      pair.text = _STL::basic_string<C>();
      pair.model.clear();
    }
  }

  template <class C, class Unit>
  void run() {
    tTextPair<C, Unit> pair;
    for (int count = 0; count < kModelSteps; ++count) {
      step(pair);
      ASSERT_TRUE(pair.agree()) << "step " << count << ", text " << content(pair.text);
      ASSERT_FALSE(HasFailure()) << "step " << count;
    }
    EXPECT_GT(faults(), kModelSteps / 200u);
  }
};

TEST_F(StlTextModel, NarrowTextBehavesLikeItsModel) {
  run<char, char>();
}

TEST_F(StlTextModel, WideTextBehavesLikeItsModel) {
  run<wchar_t, char16_t>();
}

TEST_F(StlTextModel, ComparisonsAgreeWithTheModel) {
  for (int count = 0; count < kModelSteps; ++count) {
    std::string first;
    std::string second;
    for (std::string* text : {&first, &second}) {
      std::generate_n(std::back_inserter(*text), below(4), [&] { return character<char>(); });
    }
    _STL::string const left(first.data(), first.size());
    _STL::string const right(second.data(), second.size());
    ASSERT_EQ(left == right, first == second);
    ASSERT_EQ(left < right, first < second);
    int const wanted = first.compare(second);
    ASSERT_EQ(left.compare(right) < 0, wanted < 0) << content(left) << content(right);
    ASSERT_EQ(left.compare(right) == 0, wanted == 0) << content(left) << content(right);
    ASSERT_EQ(left.compare(second.c_str()) < 0, first.compare(second.c_str()) < 0);
  }
}

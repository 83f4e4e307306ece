// What the containers promise in their types, and what must not compile.

#include <type_traits>
#include <utility>

#include "content.h"
#include "testAllocator.h"

namespace {

using tScratchText = _STL::basic_string<char, _STL::kMemoryScratch>;
using tScratchNumbers = _STL::vector<i32, _STL::kMemoryScratch>;

template <class Container>
constexpr bool neverThrows = std::is_nothrow_default_constructible_v<Container>&&
    std::is_nothrow_copy_constructible_v<Container>&& std::is_nothrow_copy_assignable_v<Container>&&
        std::is_nothrow_move_constructible_v<Container>&& std::is_nothrow_move_assignable_v<
            Container>&&
            std::is_nothrow_destructible_v<Container>&& noexcept(std::declval<Container&>().swap(
                std::declval<Container&>())) && noexcept(std::declval<Container&>().clear());

static_assert(neverThrows<_STL::string> && neverThrows<_STL::wstring>);
static_assert(neverThrows<_STL::vector<i32>> && neverThrows<_STL::vector<_STL::wstring>>);
static_assert(neverThrows<_STL::list<u32>> && neverThrows<_STL::list<_STL::string>>);
static_assert(neverThrows<_STL::map<u32, void*>>);
static_assert(neverThrows<_STL::map<_STL::string, _STL::vector<i32>>>);

// Growth says whether it was done, and throws in no form.
static_assert(noexcept(_STL::string("a")) && noexcept(_STL::string("a", 1)));
static_assert(requires(_STL::string text) {
  { text.append("") }
  noexcept->std::same_as<bool>;
  { text.append("", 0) }
  noexcept->std::same_as<bool>;
  { text.append(text) }
  noexcept->std::same_as<bool>;
  { text.assign("") }
  noexcept->std::same_as<bool>;
  { text.assign("", 0) }
  noexcept->std::same_as<bool>;
  { text.assign(text) }
  noexcept->std::same_as<bool>;
  { text.insert(0, "") }
  noexcept->std::same_as<bool>;
  { text.insert(0, "", 0) }
  noexcept->std::same_as<bool>;
  { text.push_back('a') }
  noexcept->std::same_as<bool>;
  { text.reserve(0) }
  noexcept->std::same_as<bool>;
  { text.resize(0) }
  noexcept->std::same_as<bool>;
  { text.erase(0, 0) }
  noexcept;
  { text.compare(text) }
  noexcept->std::same_as<i32>;
});
static_assert(requires(_STL::vector<_STL::string> texts, _STL::string text) {
  { texts.push_back(text) }
  noexcept->std::same_as<bool>;
  { texts.push_back(_STL::move(text)) }
  noexcept->std::same_as<bool>;
  { texts.insert(0, text) }
  noexcept->std::same_as<bool>;
  { texts.insert(0, _STL::move(text)) }
  noexcept->std::same_as<bool>;
  { texts.assign(&text, 1) }
  noexcept->std::same_as<bool>;
  { texts.reserve(0) }
  noexcept->std::same_as<bool>;
  { texts.resize(0) }
  noexcept->std::same_as<bool>;
  { texts.erase(0) }
  noexcept;
  { texts.pop_back() }
  noexcept;
});
static_assert(requires(_STL::list<_STL::string> texts, _STL::string text) {
  { texts.push_back(text) }
  noexcept->std::same_as<bool>;
  { texts.push_front(_STL::move(text)) }
  noexcept->std::same_as<bool>;
  { texts.insert(texts.begin(), text) }
  noexcept->std::same_as<bool>;
  { texts.erase(texts.begin()) }
  noexcept;
  { texts.remove(text) }
  noexcept->std::same_as<size_t>;
});
static_assert(requires(_STL::map<_STL::string, _STL::string> texts, _STL::string text) {
  { texts.insert(text, text) }
  noexcept->std::same_as<bool>;
  { texts.insert(text, _STL::move(text)) }
  noexcept->std::same_as<bool>;
  { texts.find(text) }
  noexcept->std::same_as<_STL::string*>;
  { texts.contains(text) }
  noexcept->std::same_as<bool>;
  { texts.erase(text) }
  noexcept->std::same_as<bool>;
});

// Building a text can fail, so it never happens by the way.
static_assert(!std::is_convertible_v<char const*, _STL::string>);
static_assert(!std::is_assignable_v<_STL::string&, char const*>);
static_assert(!std::is_constructible_v<_STL::string, std::nullptr_t, std::nullptr_t>);
template <class Text>
concept canBeAdded = requires(Text text) {
  text + text;
}
|| requires(Text text) {
  text += text;
};
static_assert(!canBeAdded<_STL::string>);

// Storage of one kind of memory does not become storage of the other.
static_assert(!std::is_constructible_v<_STL::string, tScratchText&&>);
static_assert(!std::is_assignable_v<_STL::string&, tScratchText&&>);
static_assert(!std::is_assignable_v<_STL::vector<i32>&, tScratchNumbers&&>);

// A constant container shows constant elements.
template <class Container>
using tShown = decltype(*std::declval<Container const&>().begin());
static_assert(std::is_same_v<tShown<_STL::string>, char const&>);
static_assert(std::is_same_v<tShown<_STL::vector<i32>>, i32 const&>);
static_assert(std::is_same_v<tShown<_STL::list<i32>>, i32 const&>);
static_assert(std::is_const_v<std::remove_reference_t<tShown<_STL::map<i32, i32>>>>);
static_assert(
    std::is_same_v<decltype(std::declval<_STL::map<i32, i32> const&>().find(1)), i32 const*>);

// The key of an entry cannot be changed under the map's feet.
static_assert(!std::is_assignable_v<decltype((_STL::map<i32, i32>().begin()->key)), i32>);

// An element whose move may fail halfway is refused.
struct tThrowingMove {
  tThrowingMove(tThrowingMove const&) noexcept(false);
  tThrowingMove(tThrowingMove&&) noexcept(false);
};
struct tThrowingCopyOnly {
  tThrowingCopyOnly(tThrowingCopyOnly const&);
};
struct tQuietCopyOnly {
  tQuietCopyOnly(tQuietCopyOnly const&) noexcept;
};
static_assert(!_STL::relocatable<tThrowingMove> && !_STL::relocatable<tThrowingCopyOnly>);
static_assert(_STL::relocatable<tQuietCopyOnly> && _STL::relocatable<i32>);
static_assert(_STL::relocatable<_STL::string> && _STL::relocatable<_STL::map<i32, i32>>);

template <class T>
concept vectorTakes = requires(_STL::vector<T> all, T one) {
  all.insert(0, one);
};
template <class T>
concept listTakes = requires(_STL::list<T> all, T one) {
  all.insert(all.begin(), one);
};
template <class K, class V>
concept mapTakes = requires(_STL::map<K, V> all, K key, V value) {
  all.insert(key, value);
};
static_assert(vectorTakes<tQuietCopyOnly> && !vectorTakes<tThrowingMove>);
static_assert(listTakes<tQuietCopyOnly> && !listTakes<tThrowingMove>);
static_assert(mapTakes<i32, tQuietCopyOnly> && !mapTakes<i32, tThrowingMove>);
static_assert(!mapTakes<tThrowingMove, i32>);

// Who can fail is asked, who cannot is not.
static_assert(_STL::reports_failure<_STL::string> && _STL::reports_failure<_STL::vector<i32>>);
static_assert(_STL::reports_failure<_STL::list<i32>> && _STL::reports_failure<_STL::map<i32, i32>>);
static_assert(!_STL::reports_failure<i32> && !_STL::reports_failure<char*>);

// Objects of the module cost what their contents need.
static_assert(sizeof(_STL::string) == 4 * sizeof(void*));
static_assert(sizeof(_STL::vector<i32>) == 4 * sizeof(void*));

// Globals need no constructor to run.
constinit _STL::string constantText;
constinit _STL::wstring constantWideText;
constinit _STL::vector<_STL::string> constantVector;
constinit _STL::list<u32> constantList;
constinit _STL::map<u32, void*> constantMap;

}  // namespace

class StlPromises : public StlTest {};

TEST_F(StlPromises, ContainersInConstantStorageWorkFromTheStart) {
  EXPECT_TRUE(constantText.append("text"));
  EXPECT_TRUE(constantWideText.append(L"text"));
  EXPECT_TRUE(constantVector.push_back(constantText));
  EXPECT_TRUE(constantList.push_back(1));
  EXPECT_TRUE(constantMap.insert(1, nullptr));
  EXPECT_TRUE(constantVector[0] == "text");
  EXPECT_EQ(constantList.front(), 1u);
  constantText = _STL::string();
  constantWideText = _STL::wstring();
  constantVector = _STL::vector<_STL::string>();
  constantList.clear();
  constantMap.clear();
}

TEST_F(StlPromises, PlacementFormStaysApartFromOthers) {
  struct tWithOwnNew {
    static void* operator new(size_t) noexcept { return nullptr; }
    explicit tWithOwnNew(i32 number) noexcept : value(number) {}
    i32 value;
  };
  alignas(tWithOwnNew) unsigned char storage[sizeof(tWithOwnNew)];
  tWithOwnNew* const built = _STL::construct(reinterpret_cast<tWithOwnNew*>(storage), 7);
  EXPECT_EQ(static_cast<void*>(built), static_cast<void*>(storage));
  EXPECT_EQ(built->value, 7);
}

#include "oxdiagview/tLayoutTable.h"

#include <algorithm>
#include <bit>
#include <charconv>

namespace oxdiagview {
namespace {

constexpr size_t kMostShapes = 64;
constexpr uint32_t kNotedLines = 1024;  // of a shape; behind them it is known
constexpr size_t kLeastCutLength = 20;  // a narrower prefix is meant to have what it has
constexpr size_t kUsualWidths = 10;     // people set widths that are multiples of it
constexpr int kUnusual = 6;             // cost of a field that other lines do not have
constexpr tFieldSet kAllFields = (1u << kFieldCount) - 1;

bool isNumber(tLook look) {
  return look == tLook::kNumber;
}

uint64_t numberOf(std::string_view digits) {
  uint64_t number = 0;
  auto const end = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return end.ec == std::errc() ? number : ~uint64_t{0};
}

int costOfComponent(tLook look) {
  if (look == tLook::kText) return 0;
  if (look == tLook::kFileName) return 5;
  return look == tLook::kNothing ? 2 : 15;
}

int costOfVersion(tLook look) {
  if (look == tLook::kVersion) return 0;
  return look == tLook::kText ? 12 : tColumn::kNever;
}

int costOfFile(tLook look) {
  if (look == tLook::kFileName) return 0;
  if (look == tLook::kText) return 3;
  return look == tLook::kNothing ? 6 : tColumn::kNever;
}

int costOfLook(tField field, tLook look) {
  if (field == kComponent) return costOfComponent(look);
  if (field == kVersion) return costOfVersion(look);
  if (field == kFile) return costOfFile(look);
  return field == kThread && look == tLook::kHexadecimal ? 0 : tColumn::kNever;
}

bool canBe(tField field, tLook look) {
  bool const wantsNumber = tColumn().getCost(field) < tColumn::kNever;
  return wantsNumber ? isNumber(look) : costOfLook(field, look) < tColumn::kNever;
}

size_t countFields(tFieldSet fields) {
  return static_cast<size_t>(std::popcount(fields));
}

// The highest bit is in front of the looks.
size_t countLooks(uint32_t signature) {
  return (static_cast<size_t>(std::bit_width(signature)) - 1) / tPrefixText::kBitsOfALook;
}

// `index` is below the count.
tLook lookAt(uint32_t signature, size_t index) {
  size_t const count = countLooks(signature);
  size_t const behind = index < count ? count - index - 1 : 0;
  constexpr uint32_t kMask = (1u << tPrefixText::kBitsOfALook) - 1;
  return static_cast<tLook>(signature >> (behind * tPrefixText::kBitsOfALook) & kMask);
}

}  // namespace

void tLayoutTable::note(tPrefixText const& prefix) {
  tShape& shape = getShape(prefix.getSignature());
  if (shape.count >= kNotedLines) return;
  ++shape.count;
  size_t const whole = prefix.getCount() - (isCut(prefix) ? 1 : 0);
  for (size_t index = 0; index < whole; ++index) {
    if (isNumber(prefix.getLook(index))) shape.columns[index].note(numberOf(prefix.getPart(index)));
  }
}

void tLayoutTable::noteLength(tPrefixText const& prefix) {
  if (!prefix.isFull()) {
    paddedLength = prefix.getLength();
    return;
  }
  areFullAlike = areFullAlike && (fullCount == 0 || fullLength == prefix.getLength());
  fullLength = std::max(fullLength, prefix.getLength());
  ++fullCount;
}

bool tLayoutTable::isCut(tPrefixText const& prefix) const {
  if (!prefix.isFull() || prefix.getCount() == 0) return false;
  if (paddedLength != 0) return prefix.getLength() == paddedLength && fullLength <= paddedLength;
  if (!areFullAlike || fullCount < 2 || prefix.getLength() < kLeastCutLength) return false;
  return prefix.getLength() % kUsualWidths == 1;
}

void tLayoutTable::findUsual() {
  tShape const* most = nullptr;
  for (tShape const& shape : shapes) {
    if (most == nullptr || shape.count > most->count) most = &shape;
  }
  if (most != nullptr) usual = solve(*most);
  for (tShape const& shape : shapes) {
    if (countLooks(shape.signature) > countFields(fullest)) fullest = solve(shape);
  }
}

bool tLayoutTable::knows(tPrefixText const& prefix) const {
  return std::any_of(shapes.begin(), shapes.end(), [&](tShape const& shape) {
    return shape.signature == prefix.getSignature() && shape.count != 0;
  });
}

// A prefix without room for padding may have lost its last fields: it has the first ones of those
// that others have.
tFieldSet tLayoutTable::find(tPrefixText const& prefix) {
  if (prefix.getCount() == 0) return 0;
  tFieldSet const known = legend != 0 ? legend : fullest;
  bool const mayLackFields = prefix.isNearlyFull() && countFields(known) > prefix.getCount();
  if (legend != 0 || mayLackFields) {
    tFieldSet const fields = fit(known, prefix);
    if (fields != 0) return fields;
  }
  usual = findAlone(prefix);
  if (countFields(usual) > countFields(fullest)) fullest = usual;
  return usual;
}

// Found anew as the lines become 2, 4, 8, ...
tFieldSet tLayoutTable::findAlone(tPrefixText const& prefix) {
  tShape& shape = getShape(prefix.getSignature());
  if (shape.solved == 0 || shape.count >= 2 * shape.solved) {
    shape.fields = solve(shape);
    shape.solved = std::max(shape.count, 1u);
  }
  return shape.fields;
}

tLayoutTable::tShape& tLayoutTable::getShape(uint32_t signature) {
  auto const found = std::find_if(shapes.begin(), shapes.end(), [=](tShape const& shape) {
    return shape.signature == signature;
  });
  if (found == shapes.begin() && found != shapes.end()) return *found;
  if (found != shapes.end()) {
    std::iter_swap(shapes.begin(), found);
    return shapes.front();
  }
  if (shapes.size() < kMostShapes) shapes.emplace_back();
  std::swap(shapes.front(), shapes.back());
  shapes.front() = tShape();
  shapes.front().signature = signature;
  return shapes.front();
}

// The first of `known`, as many as the prefix has parts; none if they do not fit.
tFieldSet tLayoutTable::fit(tFieldSet known, tPrefixText const& prefix) const {
  tFieldSet fields = known;
  while (countFields(fields) > prefix.getCount()) fields &= ~std::bit_floor(fields);
  bool const isWhole = fields == known || prefix.isNearlyFull();
  if (!isWhole || countFields(fields) != prefix.getCount()) return 0;
  size_t index = 0;
  for (tFieldSet rest = fields; rest != 0; rest &= rest - 1, ++index) {
    tField const field = static_cast<tField>(std::countr_zero(rest));
    bool const isLast = index + 1 == prefix.getCount() && isCut(prefix);
    if (!isLast && !canBe(field, prefix.getLook(index))) return 0;
  }
  return fields;
}

tFieldSet tLayoutTable::solve(tShape const& shape) const {
  tFieldSet best = 0;
  int bestCost = tColumn::kNever;
  for (tFieldSet fields = 1; fields <= kAllFields; ++fields) {
    if (countFields(fields) != countLooks(shape.signature)) continue;
    int const cost = getCost(shape, fields);
    if (cost < bestCost) best = fields;
    bestCost = std::min(cost, bestCost);
  }
  return best;
}

int tLayoutTable::getCost(tShape const& shape, tFieldSet fields) const {
  int cost = usual == 0 ? 0 : kUnusual * std::popcount(fields & ~usual);
  size_t index = 0;
  for (tFieldSet rest = fields; rest != 0; rest &= rest - 1, ++index) {
    tField const field = static_cast<tField>(std::countr_zero(rest));
    tLook const look = lookAt(shape.signature, index);
    bool const isColumn = isNumber(look) && costOfLook(field, look) >= tColumn::kNever;
    cost += isColumn ? shape.columns[index].getCost(field) : costOfLook(field, look);
  }
  return cost;
}

}  // namespace oxdiagview

#pragma once

// A ring of objects that have their links in themselves: T derives from LIST_ENTRY. Owns nothing
// and has no lock of its own. All zeros are a list that nobody may use yet.

#include "ntos/types.h"

namespace nOXDIAG100 {

template <class T>
class tLinkedList {
 public:
  void initialise() { head = {&head, &head}; }

  // The first, and the one behind `item`; null behind the last.
  T* first() { return itemAt(head.Flink); }
  T* next(T& item) { return itemAt(item.Flink); }

  void append(T& item) {
    LIST_ENTRY& entry = item;
    entry = {&head, head.Blink};
    head.Blink->Flink = &entry;
    head.Blink = &entry;
  }

  // Takes an item out of the list that it is in.
  static void remove(T& item) {
    item.Blink->Flink = item.Flink;
    item.Flink->Blink = item.Blink;
  }

 private:
  T* itemAt(LIST_ENTRY* entry) { return entry == &head ? nullptr : static_cast<T*>(entry); }

  LIST_ENTRY head;
};

}  // namespace nOXDIAG100

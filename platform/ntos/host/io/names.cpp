#include "io/names.h"

#include <stdlib.h>
#include <string.h>

namespace ntoshost {
namespace {

constexpr size_t kCapacity = 256;  // characters

// One name: of a device, or of a link with the name that it stands for.
struct Name {
  Name* next;
  DEVICE_OBJECT* device;
  size_t length;
  size_t targetLength;
  wchar_t text[kCapacity];
  wchar_t target[kCapacity];
};

constinit Name* g_names = nullptr;

wchar_t toLower(wchar_t character) {
  return character >= 'A' && character <= 'Z' ? static_cast<wchar_t>(character + 32) : character;
}

bool startsWith(wchar_t const* text, size_t length, char const* head) {
  size_t const headLength = strlen(head);
  if (length < headLength) return false;
  for (size_t i = 0; i < headLength; ++i) {
    if (toLower(text[i]) != static_cast<wchar_t>(head[i])) return false;
  }
  return true;
}

size_t append(wchar_t* to, size_t length, wchar_t const* text, size_t added) {
  for (size_t i = 0; i < added; ++i) to[length++] = toLower(text[i]);
  return length;
}

// The name as it is compared; 0 when it is none.
size_t normalise(UNICODE_STRING const& name, wchar_t* to) {
  constexpr char kDosDevices[] = "\\dosdevices\\";
  size_t const length = name.Length / sizeof(wchar_t);
  if (length < 2 || length > kCapacity || name.Buffer[0] != '\\') return 0;
  if (!startsWith(name.Buffer, length, kDosDevices)) return append(to, 0, name.Buffer, length);
  constexpr size_t kHead = sizeof(kDosDevices) - 1;
  return append(to, append(to, 0, L"\\??\\", 4), name.Buffer + kHead, length - kHead);
}

Name** linkTo(wchar_t const* text, size_t length) {
  Name** link = &g_names;
  while (*link != nullptr && ((*link)->length != length ||
                              memcmp((*link)->text, text, length * sizeof(wchar_t)) != 0)) {
    link = &(*link)->next;
  }
  return link;
}

void drop(Name** link) {
  Name* const name = *link;
  *link = name->next;
  free(name);
}

// A name that is not yet there, not yet in the list; null with the status otherwise.
Name* makeName(UNICODE_STRING const& text, NTSTATUS* status) {
  Name* const name = static_cast<Name*>(calloc(1, sizeof(Name)));
  *status = STATUS_INSUFFICIENT_RESOURCES;
  if (name == nullptr) return nullptr;
  name->length = normalise(text, name->text);
  *status = STATUS_SUCCESS;
  if (name->length == 0) *status = STATUS_OBJECT_NAME_INVALID;
  if (*linkTo(name->text, name->length) != nullptr) *status = STATUS_OBJECT_NAME_COLLISION;
  if (*status == STATUS_SUCCESS) return name;
  free(name);
  return nullptr;
}

void add(Name* name) {
  name->next = g_names;
  g_names = name;
}

Name* findName(UNICODE_STRING const& text) {
  wchar_t normal[kCapacity];
  size_t const length = normalise(text, normal);
  return length == 0 ? nullptr : *linkTo(normal, length);
}

}  // namespace

NTSTATUS nameDevice(UNICODE_STRING const& text, DEVICE_OBJECT* device) {
  NTSTATUS status;
  Name* const name = makeName(text, &status);
  if (name == nullptr) return status;
  name->device = device;
  add(name);
  return STATUS_SUCCESS;
}

NTSTATUS nameLink(UNICODE_STRING const& link, UNICODE_STRING const& target) {
  NTSTATUS status;
  Name* const name = makeName(link, &status);
  if (name == nullptr) return status;
  name->targetLength = normalise(target, name->target);
  add(name);
  return STATUS_SUCCESS;
}

void forgetNameOf(DEVICE_OBJECT* device) {
  Name** link = &g_names;
  while (*link != nullptr && (*link)->device != device) link = &(*link)->next;
  if (*link != nullptr) drop(link);
}

NTSTATUS forgetLink(UNICODE_STRING const& link) {
  wchar_t normal[kCapacity];
  size_t const length = normalise(link, normal);
  Name** const found = linkTo(normal, length);
  if (length == 0 || *found == nullptr || (*found)->device != nullptr) {
    return STATUS_OBJECT_NAME_NOT_FOUND;
  }
  drop(found);
  return STATUS_SUCCESS;
}

DEVICE_OBJECT* findNamed(UNICODE_STRING const& text) {
  Name const* name = findName(text);
  if (name != nullptr && name->device == nullptr) {
    name = *linkTo(name->target, name->targetLength);
  }
  return name == nullptr ? nullptr : name->device;
}

u64 countLinks() {
  u64 count = 0;
  for (Name const* name = g_names; name != nullptr; name = name->next) {
    if (name->device == nullptr) ++count;
  }
  return count;
}

void visitLinks(void (*visit)(char const* text)) {
  for (Name const* name = g_names; name != nullptr; name = name->next) {
    if (name->device != nullptr) continue;
    char text[kCapacity + 1] = {};
    for (size_t i = 0; i < name->length; ++i) text[i] = static_cast<char>(name->text[i]);
    visit(text);
  }
}

}  // namespace ntoshost

#pragma once

#include "ntos/security.h"

// The security of a device that is for the system and for administrators, and for nobody else.

// An identifier of the authority that names such groups, with so many numbers.
template <u8 kNumbers>
struct tSecurityIdentifier {
  u8 revision = 1;
  u8 count = kNumbers;
  u8 authority[6] = {0, 0, 0, 0, 0, 5};
  u32 numbers[kNumbers];
};

template <u8 kNumbers>
struct tAllowedEntry {
  ACE_HEADER header = {ACCESS_ALLOWED_ACE_TYPE, 0, sizeof(tAllowedEntry)};
  ACCESS_MASK access = GENERIC_ALL;
  tSecurityIdentifier<kNumbers> who;
};

struct tDeviceSecurity {
  SECURITY_DESCRIPTOR_RELATIVE head = {SECURITY_DESCRIPTOR_REVISION,
                                       0,
                                       SE_DACL_PRESENT | SE_DACL_PROTECTED | SE_SELF_RELATIVE,
                                       0,
                                       0,
                                       0,
                                       sizeof(SECURITY_DESCRIPTOR_RELATIVE)};
  ACL list = {ACL_REVISION, 0, sizeof(ACL) + sizeof(tAllowedEntry<1>) + sizeof(tAllowedEntry<2>), 2,
              0};
  tAllowedEntry<1> system = {.who = {.numbers = {18}}};
  tAllowedEntry<2> administrators = {.who = {.numbers = {32, 544}}};
};
static_assert(sizeof(tAllowedEntry<1>) == 20 && sizeof(tAllowedEntry<2>) == 24);
static_assert(sizeof(tDeviceSecurity) == 72 && offsetof(tDeviceSecurity, list) == 20);

constexpr tDeviceSecurity kForAdministrators = {};

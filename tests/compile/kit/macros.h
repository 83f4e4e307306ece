#pragma once

// Every macro that a client writes, used, behind all headers of the family.

#define OXDIAG_COMPONENT "kit"
#define OXDIAG_COMPONENT_VERSION tSSVersion(1, 0, 0, tSSVersion::kPhaseReleased, 1, 0)

namespace nMacros {

class tLamp : public nOXDIAG100::iTraceable {
 public:
  VEX_MODULE_MEMORY

  void put(nOXDIAG100::tTrace& trace) const override { trace.put("lamp"); }

  void use(nOXDIAG100::tStatus2& status, u32 slot) {
    OXDIAG_BLOCK_STATUS(100, this, &status);
    OXDIAG_BLOCK_OBJECT(100, this);
    OXDIAG_BLOCK(100);
    OXDIAG_TRACE(100, put("slot ").put(slot, 10));
    OXDIAG_TRACE_ONCE(100, put("slot ").put(slot, 10));
    OXDIAG_TRACE_EVERY(slot, 100, put("slot ").put(slot, 10));
    OXDIAG_TRACE_AT_MOST(slot, 100, put("slot ").put(slot, 10));
    ssprintf("%u\n", static_cast<unsigned int>(slot));
  }

  void check(u32 slot) {
    OXDIAG_REQUIRE(slot != 0);
    OXDIAG_REQUIRE_MESSAGE(slot != 0, "a slot");
    OXDIAG_REQUIRE_IN("lamps", slot != 0, "a slot");
    OXDIAG_ENSURE(slot != 0);
    OXDIAG_ENSURE_MESSAGE(slot != 0, "a slot");
    OXDIAG_ENSURE_IN("lamps", slot != 0, "a slot");
    OXDIAG_CHECK(slot != 0);
    OXDIAG_CHECK_MESSAGE(slot != 0, "a slot");
    OXDIAG_CHECK_IN("lamps", slot != 0, "a slot");
    OXDIAG_CLASS_INVARIANT(slot != 0);
    OXDIAG_CLASS_INVARIANT_MESSAGE(slot != 0, "a slot");
    OXDIAG_CLASS_INVARIANT_IN("lamps", slot != 0, "a slot");
    OXDIAG_LOOP_INVARIANT(slot != 0);
    OXDIAG_LOOP_INVARIANT_MESSAGE(slot != 0, "a slot");
    OXDIAG_LOOP_INVARIANT_IN("lamps", slot != 0, "a slot");
    OXDIAG_EXCEPTION(slot != 0);
    OXDIAG_EXCEPTION_MESSAGE(slot != 0, "a slot");
    OXDIAG_EXCEPTION_IN("lamps", slot != 0, "a slot");
  }

  void fail(nOXDIAG100::tStatus2& status, nOXDIAG100::iStatus2Description const& why) {
    OXDIAG_SET_STATUS(status, kStatusBadArgument);
    OXDIAG_SET_STATUS_WITHOUT_STACK_TRACE(status, kStatusBadArgument);
    OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, kStatusBadArgument, why);
    OXDIAG_SET_STATUS_WITH_DESCRIPTION_WITHOUT_STACK_TRACE(status, kStatusBadArgument, why);
  }
};

class iShape : public virtual nQELM100::iCloneable {
  QELM_DECLARE_INTERFACE(iShape, nQELM100::iCloneable)
};

class tDisc final : public iShape {
  QELM_DECLARE_CLASS(tDisc, iShape)
 public:
  VEX_MODULE_MEMORY

  nQELM100::iCloneable* clone(i32& /*status*/) const override { return new tDisc; }
};

template <class T>
class tRing final : public iShape {
  QELM_DECLARE_CLASS(tRing, iShape)
 public:
  VEX_MODULE_MEMORY

  nQELM100::iCloneable* clone(i32& /*status*/) const override { return new tRing; }
};
QELM_DEFINE_CLASS_TEMPLATE(tRing, "tRing")

inline u32 useParts(_STL::wstring& text, nOXDIAG100::tCategoryTable<u32>& table, char* end) {
  text.append(L"slot");
  table.addCopy("slot", 4);
  vexWriteDecimal(vexReadTimeStampCounter(), end);
  u32 word = 0;
  nOXDIAG100::storeOrdered(word, 1);
  nOXDIAG100::storeRelease(word, 2);
  nOXDIAG100::storeRelaxed(word, 3);
  void* pointer = end;
  nOXDIAG100::storeOrdered(pointer, nullptr);
  return nOXDIAG100::loadOrdered(word) + nOXDIAG100::loadAcquire(word) +
         nOXDIAG100::loadRelaxed(word);
}

class tHandler : public iChildHandler {
 public:
  void handleDeviceControl(u32, void*, u32, void*, u32, u64*, i32* status) override { *status = 0; }
};

// Not inline: the compiler makes code of all of it.
void useAll(nOXDIAG100::tStatus2& status, _STL::wstring& text,
            nOXDIAG100::tCategoryTable<u32>& table, char* end, _GUID& guid) {
  tLamp* const lamp = new tLamp;
  if (lamp == nullptr) return;
  u32 const slot = useParts(text, table, end);
  lamp->use(status, slot);
  lamp->check(slot);
  lamp->fail(status, nOXDIAG100::tStatus2Description(status));
  delete lamp;
  tHandler handler;
  handler.getBusTypeGUID(guid);
}

// A component that the compiler does not know: its places are the record of nowhere.
extern char const* componentName;
#undef OXDIAG_COMPONENT
#define OXDIAG_COMPONENT componentName

void traceElsewhere() {
  OXDIAG_BLOCK(100);
  OXDIAG_TRACE(100, put("elsewhere"));
  OXDIAG_REQUIRE(componentName != nullptr);
}

}  // namespace nMacros

QELM_DEFINE_INTERFACE(nMacros::iShape, "iShape")
QELM_DEFINE_CLASS(nMacros::tDisc, "tDisc")
template class nMacros::tRing<u32>;

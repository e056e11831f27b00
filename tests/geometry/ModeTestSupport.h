// Modes and coefficients for the tests, reached through their own interfaces.
#pragma once

#include "../frame/TestHelpers.h"
#include "nvdl/IMode.h"
#include "nvdl/nvdl.h"
#include "platform/ComPtr.h"

namespace nvdl::test {

template <class I>
ComPtr<I> newOf(const char16_t* progId) {
    ComPtr<IDispatch> object;
    EXPECT_EQ(CreateObject(progId, object.out()), S_OK);
    return ComPtr<I>::query(object.get());
}
inline ComPtr<IMode> newMode() { return newOf<IMode>(u"nv_bench.mode"); }
inline ComPtr<IModeCoeff> newCoeff() { return newOf<IModeCoeff>(u"nv_bench.modecoeff"); }
// The four coefficient lists, by their getters.
using ListGetter = HRESULT (IMode::*)(ICollection**);
inline constexpr ListGetter kShape = &IMode::get_Shape, kOrigShape = &IMode::get_OrigShape,
                            kParticipation = &IMode::get_Participation, kOrigParticip = &IMode::get_OrigParticip;

inline ComPtr<ICollection> list(IMode* mode, ListGetter which) { ComPtr<ICollection> c; (mode->*which)(c.out()); return c; }
inline ComPtr<IModeCoeff> coefficientAt(IMode* mode, ListGetter which, LONG index) {
    ComPtr<IDispatch> item;
    list(mode, which)->Item(Variant::fromLong(index), item.out());
    return ComPtr<IModeCoeff>::query(item.get());
}
// "Component.Node Direction Real Imaginary" of a coefficient of a list.
inline std::string coeffText(IMode* mode, ListGetter which, LONG index) {
    ComPtr<IModeCoeff> c = coefficientAt(mode, which, index);
    if (!c) return "<none>";
    std::string text = getText(c.get(), u"Component") + "." + getText(c.get(), u"Node");
    for (const char16_t* p : {u"Direction", u"Real", u"Imaginary"}) text += " " + getText(c.get(), p);
    return text;
}

inline void addCoefficient(IMode* mode, ListGetter which, const char* component, const char* node, LONG direction,
                           float re, float im) {
    ComPtr<IModeCoeff> c = newCoeff();
    c->Location(Bstr(std::string_view(component)).get(), Bstr(std::string_view(node)).get(), Variant::fromLong(direction));
    c->put_Real(re), c->put_Imaginary(im);
    Variant key, before, after;
    LONG index = -1;
    ASSERT_EQ(list(mode, which)->Add(c.get(), &key, &before, &after, &index), S_OK);
}

}  // namespace nvdl::test

// Building geometries for the tests through the classes' own interfaces, as a client does.
#pragma once

#include <gtest/gtest.h>

#include "../setup/SectionTestSupport.h"
#include "nvdl/IComponent.h"
#include "nvdl/IGeometry.h"

namespace nvdl::test {

// The list of that name of an owner (Components, Nodes, Lines, Triangles).
inline ComPtr<ICollection> listOf(IDispatch* owner, const char16_t* name) {
    Variant v;
    EXPECT_EQ(latebound::get(owner, name, &v), S_OK) << narrow(name);
    if (v.vt != VT_DISPATCH || !v.pdispVal) return {};
    return ComPtr<ICollection>::share(static_cast<ICollection*>(v.pdispVal));
}

inline void addTo(IDispatch* owner, const char16_t* list, IDispatch* item) {
    Variant key, before, after;
    LONG index = 0;
    ASSERT_EQ(listOf(owner, list)->Add(item, &key, &before, &after, &index), S_OK);
}

inline ComPtr<IDispatch> itemOf(IDispatch* owner, const char16_t* list, LONG index) {
    ComPtr<IDispatch> item;
    EXPECT_EQ(listOf(owner, list)->Item(Variant::fromLong(index), item.out()), S_OK);
    return item;
}

inline LONG countOf(IDispatch* owner, const char16_t* list) {
    LONG n = -1;
    listOf(owner, list)->get_Count(&n);
    return n;
}

inline SHORT modifiedOf(IDispatch* object) {
    Variant v;
    if (FAILED(latebound::get(object, u"Modified", &v)) || FAILED(v.changeType(VT_I2))) return 99;
    return v.iVal;
}

// The properties of a list written "Name=N1;X=0.25", each with its text.
inline std::vector<std::pair<std::string, std::string>> pairsOf(std::string_view list) {
    std::vector<std::pair<std::string, std::string>> pairs;
    while (!list.empty()) {
        const std::string_view item = list.substr(0, list.find(';'));
        list.remove_prefix(std::min(list.size(), item.size() + 1));
        const std::size_t equals = item.find('=');
        pairs.emplace_back(item.substr(0, equals), item.substr(equals + 1));
    }
    return pairs;
}

inline void expectTexts(IDispatch* object, std::string_view list) {
    for (const auto& [name, text] : pairsOf(list)) EXPECT_EQ(propertyText(object, name.c_str()), text) << name;
}

inline ComPtr<IDispatch> newWith(const char16_t* progId, std::string_view list) {
    ComPtr<IDispatch> object = newObject(progId);
    for (const auto& [name, text] : pairsOf(list)) EXPECT_EQ(putText(object.get(), widen(name), text.c_str()), S_OK);
    return object;
}

inline void call(IDispatch* object, const char16_t* name, WORD flags, std::vector<Variant> args) {
    ASSERT_EQ(invoke(object, name, flags, std::move(args)), S_OK) << narrow(name);
}

inline std::vector<Variant> three(float x, float y, float z) {
    std::vector<Variant> v;
    for (float f : {x, y, z}) v.push_back(Variant::fromFloat(f));
    return v;
}

// A geometry "Frame" (cylindrical) with one component "Base" at (1.5, -2, 3) turned by (10, 20, 30),
// holding nodes "N1" (a slave of "N2" and "N3", highlighted, colour 4) and "N2", a line N1-N2 and a
// triangle N1-N2-N3 of colour 9.
inline ComPtr<IDispatch> sampleGeometry() {
    ComPtr<IDispatch> geometry = newWith(u"nv_bench.geometry", "Name=Frame;CoordinateType=Cylindrical");
    ComPtr<IDispatch> component = newWith(
        u"nv_bench.component", "Name=Base;CoordinateType=1403;Visibility=0;ColorIndex=7;Highlight=-1;DrawSolid=-1");
    call(component.get(), u"XYZ", DISPATCH_METHOD, three(1.5f, -2, 3));
    call(component.get(), u"RotationXYZ", DISPATCH_METHOD, three(10, 20, 30));
    ComPtr<IDispatch> n1 =
        newWith(u"nv_bench.node", "Name=N1;Highlight=-1;SlaveNode=-1;ColorIndex=4;MasterNode1=N2;MasterNode2=N3");
    call(n1.get(), u"Coordinate", DISPATCH_PROPERTYPUT, three(0.25f, 0.5f, 0.75f));
    call(n1.get(), u"Orientation", DISPATCH_PROPERTYPUT, three(1, 2, 3));
    addTo(component.get(), u"Nodes", n1.get());
    addTo(component.get(), u"Nodes", newWith(u"nv_bench.node", "Name=N2").get());
    ComPtr<IDispatch> line = newObject(u"nv_bench.line");
    call(line.get(), u"Node12", DISPATCH_METHOD, {Variant::fromAnsi("N1"), Variant::fromAnsi("N2")});
    addTo(component.get(), u"Lines", line.get());
    ComPtr<IDispatch> triangle = newWith(u"nv_bench.triangle", "ColorIndex=9");
    call(triangle.get(), u"Node123", DISPATCH_METHOD,
         {Variant::fromAnsi("N1"), Variant::fromAnsi("N2"), Variant::fromAnsi("N3")});
    addTo(component.get(), u"Triangles", triangle.get());
    addTo(geometry.get(), u"Components", component.get());
    return geometry;
}

}  // namespace nvdl::test

// Building geometries for the tests through the classes' own interfaces, as a client does.
#pragma once

#include <gtest/gtest.h>

#include "../setup/SectionTestSupport.h"
#include "nvdl/IComponent.h"
#include "nvdl/IGeometry.h"
#include "nvdl/ILine.h"
#include "nvdl/INode.h"
#include "nvdl/ITriangle.h"

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

// A geometry "Frame" (cylindrical) with one component "Base" at (1.5, -2, 3) turned by (10, 20, 30),
// holding nodes "N1" (a slave of "N2" and "N3", highlighted, colour 4) and "N2", a line N1-N2 and a
// triangle N1-N2-N3.
inline ComPtr<IDispatch> sampleGeometry() {
    ComPtr<IDispatch> geometry = newObject(u"nv_bench.geometry");
    EXPECT_EQ(putText(geometry.get(), u"Name", "Frame"), S_OK);
    EXPECT_EQ(putText(geometry.get(), u"CoordinateType", "Cylindrical"), S_OK);
    ComPtr<IDispatch> component = newObject(u"nv_bench.component");
    auto c = ComPtr<IComponent>::query(component.get());
    c->put_Name(Bstr(std::string_view("Base")).get());
    c->XYZ(1.5f, -2.0f, 3.0f);
    c->RotationXYZ(10, 20, 30);
    c->put_CoordinateType(Variant::fromLong(1403));
    c->put_Visibility(0);
    c->put_ColorIndex(7);
    c->put_Highlight(-1);
    c->put_DrawSolid(-1);
    for (const char* name : {"N1", "N2"}) {
        ComPtr<IDispatch> node = newObject(u"nv_bench.node");
        auto n = ComPtr<INode>::query(node.get());
        n->put_Name(Bstr(std::string_view(name)).get());
        if (std::string_view(name) == "N1") {
            n->put_Coordinate(0.25f, 0.5f, 0.75f);
            n->put_Orientation(1, 2, 3);
            n->put_Highlight(-1);
            n->put_SlaveNode(-1);
            n->put_ColorIndex(4);
            n->put_MasterNode1(Bstr(std::string_view("N2")).get());
            n->put_MasterNode2(Bstr(std::string_view("N3")).get());
        }
        addTo(component.get(), u"Nodes", node.get());
    }
    ComPtr<IDispatch> line = newObject(u"nv_bench.line");
    ComPtr<ILine>::query(line.get())->Node12(Bstr(std::string_view("N1")).get(), Bstr(std::string_view("N2")).get());
    addTo(component.get(), u"Lines", line.get());
    ComPtr<IDispatch> triangle = newObject(u"nv_bench.triangle");
    ComPtr<ITriangle>::query(triangle.get())
        ->Node123(Bstr(std::string_view("N1")).get(), Bstr(std::string_view("N2")).get(),
                  Bstr(std::string_view("N3")).get());
    ComPtr<ITriangle>::query(triangle.get())->put_ColorIndex(9);
    addTo(component.get(), u"Triangles", triangle.get());
    addTo(geometry.get(), u"Components", component.get());
    return geometry;
}

}  // namespace nvdl::test

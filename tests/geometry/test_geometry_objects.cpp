// The geometry classes as a client sees them: defaults, enumerations, the coordinate type by code
// or text, full names, the Modified climb, Clip and deep clones.
#include <array>

#include "../frame/ForeignParent.h"
#include "GeometryTestSupport.h"

namespace nvdl::test {
namespace {

TEST(GeometryObjects, StartWithTheirDefaults) {
    const struct {
        const char16_t* progId;
        const char* defaults;
    } cases[] = {{u"nv_bench.geometry", "Name=Geom;CoordinateType=1401;Modified=0"},
                 {u"nv_bench.component", "Name=Comp;CoordinateType=1401;Visibility=1;ShowLabel=0"},
                 {u"nv_bench.node", "Name=Node;SlaveNode=0;MasterNode1="},
                 {u"nv_bench.line", "Node1=;Visibility=1;ColorIndex=0"},
                 {u"nv_bench.triangle", "Node3=;Visibility=1"}};
    for (const auto& c : cases) expectTexts(newObject(c.progId).get(), c.defaults);
}

TEST(GeometryObjects, TranslateTheSharedEnumeration) {
    const std::vector<EnumText> texts = {
        {1401, "Rectangular"}, {1403, "Spherical"}, {1504, "Radial Direction"}, {1506, "Phi Direction"}, {1500, ""}};
    for (const char16_t* progId : {u"nv_bench.geometry", u"nv_bench.component", u"nv_bench.node"})
        expectTranslations(newObject(progId).get(), texts);
}

TEST(GeometryObjects, CoordinateTypeTakesACodeOrItsText) {
    const struct {
        Variant value;
        HRESULT status;
        const char* after;
    } cases[] = {
        {Variant::fromAnsi("Spherical"), S_OK, "1403"},
        {Variant::fromLong(1402), S_OK, "1402"},
        {Variant::fromShort(7), S_OK, "7"},  // a code is stored without a range check
        {Variant::fromAnsi("1403"), S_OK, "1403"},
        {Variant::fromAnsi("spherical"), E_INVALIDARG, "1401"},  // the text's case counts
        {Variant::fromAnsi("Polar"), E_INVALIDARG, "1401"},
        {Variant::fromAnsi("X Direction"), S_OK, "1501"},
    };
    for (const char16_t* progId : {u"nv_bench.geometry", u"nv_bench.component"}) {
        for (const auto& c : cases) {
            ComPtr<IDispatch> object = newObject(progId);
            EXPECT_EQ(latebound::put(object.get(), u"CoordinateType", c.value), c.status)
                << narrow(progId) << " " << c.after;
            EXPECT_EQ(getText(object.get(), u"CoordinateType"), c.after) << narrow(progId);
            EXPECT_EQ(modifiedOf(object.get()), SUCCEEDED(c.status) ? 1 : 0);
        }
    }
}

TEST(GeometryObjects, FullNamesFollowTheParents) {
    ComPtr<IDispatch> geometry = newObject(u"nv_bench.geometry");
    ComPtr<IDispatch> component = newObject(u"nv_bench.component");
    ComPtr<IDispatch> node = newObject(u"nv_bench.node");
    putText(geometry.get(), u"Name", "Frame");
    EXPECT_EQ(getText(node.get(), u"FullName"), "Node");
    EXPECT_EQ(getText(component.get(), u"FullName"), "Comp");
    addTo(component.get(), u"Nodes", node.get());
    EXPECT_EQ(getText(node.get(), u"FullName"), "Comp.Node");
    addTo(geometry.get(), u"Components", component.get());
    EXPECT_EQ(getText(component.get(), u"FullName"), "Frame.Comp");
    EXPECT_EQ(getText(node.get(), u"FullName"), "Frame.Comp.Node");
}

TEST(GeometryObjects, ModifiedClimbsToTheWorkspaceAndClearingStaysLocal) {
    ForeignParent workspace(IID_IWorkspace);
    ComPtr<IDispatch> geometry = sampleGeometry();
    latebound::put(geometry.get(), u"Parent", Variant::fromDispatch(&workspace), true);
    ComPtr<IDispatch> component = itemOf(geometry.get(), u"Components", 0);
    for (const char16_t* list : {u"Nodes", u"Lines", u"Triangles"}) {
        ComPtr<IDispatch> child = itemOf(component.get(), list, 0);
        for (IDispatch* o : {child.get(), component.get(), geometry.get()})
            latebound::put(o, u"Modified", Variant::fromShort(0));
        workspace.modified = 0;
        ASSERT_EQ(latebound::put(child.get(), u"Modified", Variant::fromShort(0)), S_OK);
        EXPECT_EQ(modifiedOf(component.get()), 0) << narrow(list);
        ASSERT_EQ(putText(child.get(), u"ColorIndex", "3"), S_OK);
        const std::array<SHORT, 4> flags{modifiedOf(child.get()), modifiedOf(component.get()),
                                         modifiedOf(geometry.get()), workspace.modified};
        EXPECT_EQ(flags, (std::array<SHORT, 4>{1, 1, 1, 1})) << narrow(list);
    }
}

TEST(GeometryObjects, ClipRendersTheFieldsInTheirOrder) {
    ComPtr<IDispatch> geometry = sampleGeometry();
    ComPtr<IDispatch> component = itemOf(geometry.get(), u"Components", 0);
    latebound::put(component.get(), u"X", Variant::fromFloat(1.9f));
    const struct {
        IDispatch* object;
        const char* format;
        const char* text;
    } cases[] = {
        {geometry.get(), "%1 %2", "Frame Cylindrical"},
        {component.get(), "%1 %2 %3 %4 %5 %6 %7 %8", "Base 1 -2 3 10 20 30 Spherical"},
        {component.get(), "%9|%10|%11|%12|%13", "0|7|-1|-1|0"},
        {itemOf(component.get(), u"Nodes", 0).get(), "%1 %2!d! %5 %8 %9 %10 %11 %12", "N1 0 1 -1 4 -1 N2 N3"},
        {itemOf(component.get(), u"Lines", 0).get(), "%1-%2 %3 %4", "N1-N2 1 0"},
        {itemOf(component.get(), u"Triangles", 0).get(), "%1 %2 %3 %4", "N1 N3 1 9"},
    };
    for (const auto& c : cases) {
        Variant text;
        ASSERT_EQ(invoke(c.object, u"Clip", DISPATCH_METHOD, {Variant::fromAnsi(c.format)}, &text), S_OK) << c.format;
        EXPECT_EQ(textOf(text), c.text);
    }
    Variant none;  // no format gives an empty text
    ASSERT_EQ(invoke(geometry.get(), u"Clip", DISPATCH_METHOD, {Variant::fromString(u"")}, &none), S_OK);
    EXPECT_EQ(textOf(none), "");
}

TEST(GeometryObjects, CloneIsDeepAndKeepsTheOrder) {
    ComPtr<IDispatch> original = sampleGeometry();
    latebound::put(original.get(), u"Modified", Variant::fromShort(0));

    Variant result;
    ASSERT_EQ(latebound::call(original.get(), u"Clone", {}, &result), S_OK);
    IDispatch* copy = result.pdispVal;
    expectTexts(copy, "Name=Frame;CoordinateType=1402");
    ASSERT_EQ(countOf(copy, u"Components"), 1);
    ComPtr<IDispatch> component = itemOf(copy, u"Components", 0);
    ComPtr<IDispatch> source = itemOf(original.get(), u"Components", 0);
    expectTexts(component.get(), "FullName=Frame.Base;X=1.5;CoordinateType=1403");
    for (const char16_t* list : {u"Nodes", u"Lines", u"Triangles"})
        EXPECT_EQ(countOf(component.get(), list), countOf(source.get(), list)) << narrow(list);
    ComPtr<IDispatch> node = itemOf(component.get(), u"Nodes", 0);
    expectTexts(node.get(), "FullName=Frame.Base.N1;MasterNode2=N3;Z=0.75");

    // Changing the copy leaves the original as it was, and marks only the copy's side.
    putText(node.get(), u"Name", "Moved");
    putText(itemOf(component.get(), u"Triangles", 0).get(), u"ColorIndex", "1");
    EXPECT_EQ(getText(itemOf(source.get(), u"Nodes", 0).get(), u"Name"), "N1");
    EXPECT_EQ(getText(itemOf(source.get(), u"Triangles", 0).get(), u"ColorIndex"), "9");
    EXPECT_EQ(modifiedOf(original.get()), 0);
    EXPECT_EQ(modifiedOf(copy), 1);

    // A component's clone keeps its geometry as parent, and cloning it marks nothing there.
    Variant componentCopy;
    ASSERT_EQ(latebound::call(source.get(), u"Clone", {}, &componentCopy), S_OK);
    EXPECT_EQ(getText(itemOf(componentCopy.pdispVal, u"Nodes", 0).get(), u"FullName"), "Frame.Base.N1");
    EXPECT_EQ(modifiedOf(original.get()), 0);
}

TEST(GeometryObjects, FieldsListTheFlagAlone) {
    ComPtr<IDispatch> geometry = newObject(u"nv_bench.geometry");
    Variant fields, field;
    ASSERT_EQ(latebound::get(geometry.get(), u"Fields", &fields), S_OK);
    EXPECT_EQ(getText(fields.pdispVal, u"Count"), "1");
    ASSERT_EQ(invoke(fields.pdispVal, u"Item", DISPATCH_PROPERTYGET, {Variant::fromLong(0)}, &field), S_OK);
    expectTexts(field.pdispVal, "Name=Modified;Value=0");
}

}  // namespace
}  // namespace nvdl::test

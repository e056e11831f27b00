// The geometry classes as a client sees them: defaults, enumerations, the coordinate type by code
// or text, full names, the Modified climb, Clip and deep clones.
#include "../frame/ForeignParent.h"
#include "GeometryTestSupport.h"

namespace nvdl::test {
namespace {

TEST(GeometryObjects, StartWithTheirDefaults) {
    const struct {
        const char16_t* progId;
        std::vector<PropertyText> defaults;
    } cases[] = {
        {u"nv_bench.geometry", {{"Name", "Geom"}, {"CoordinateType", "1401"}, {"Modified", "0"}}},
        {u"nv_bench.component",
         {{"Name", "Comp"}, {"X", "0"}, {"RotationZ", "0"}, {"CoordinateType", "1401"}, {"Visibility", "1"},
          {"ColorIndex", "0"}, {"Highlight", "0"}, {"DrawSolid", "0"}, {"ShowLabel", "0"}}},
        {u"nv_bench.node",
         {{"Name", "Node"}, {"Y", "0"}, {"Highlight", "0"}, {"SlaveNode", "0"}, {"MasterNode1", ""}, {"ColorIndex", "0"}}},
        {u"nv_bench.line", {{"Node1", ""}, {"Node2", ""}, {"Visibility", "1"}, {"ColorIndex", "0"}}},
        {u"nv_bench.triangle", {{"Node3", ""}, {"Visibility", "1"}, {"ColorIndex", "0"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(narrow(c.progId));
        expectProperties(newObject(c.progId).get(), c.defaults);
    }
}

TEST(GeometryObjects, TranslateTheSharedEnumeration) {
    const std::vector<EnumText> texts = {{1401, "Rectangular"},      {1402, "Cylindrical"},   {1403, "Spherical"},
                                         {1501, "X Direction"},      {1503, "Z Direction"},   {1504, "Radial Direction"},
                                         {1506, "Phi Direction"},    {1404, ""},              {1500, ""}};
    for (const char16_t* progId : {u"nv_bench.geometry", u"nv_bench.component", u"nv_bench.node"}) {
        SCOPED_TRACE(narrow(progId));
        expectTranslations(newObject(progId).get(), texts);
    }
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
            EXPECT_EQ(latebound::put(object.get(), u"CoordinateType", c.value), c.status) << narrow(progId) << " " << c.after;
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
    ComPtr<IDispatch> geometry = sampleGeometry();
    ForeignParent workspace(IID_IWorkspace);
    latebound::put(geometry.get(), u"Parent", Variant::fromDispatch(&workspace), true);
    ComPtr<IDispatch> component = itemOf(geometry.get(), u"Components", 0);
    const struct {
        const char16_t* list;
    } children[] = {{u"Nodes"}, {u"Lines"}, {u"Triangles"}};
    for (const auto& c : children) {
        ComPtr<IDispatch> child = itemOf(component.get(), c.list, 0);
        for (IDispatch* o : {child.get(), component.get(), geometry.get()}) latebound::put(o, u"Modified", Variant::fromShort(0));
        workspace.modified = 0;
        ASSERT_EQ(latebound::put(child.get(), u"Modified", Variant::fromShort(0)), S_OK);
        EXPECT_EQ(modifiedOf(component.get()), 0) << narrow(c.list);
        ASSERT_EQ(putText(child.get(), u"ColorIndex", "3"), S_OK);
        EXPECT_EQ(modifiedOf(child.get()), 1) << narrow(c.list);
        EXPECT_EQ(modifiedOf(component.get()), 1) << narrow(c.list);
        EXPECT_EQ(modifiedOf(geometry.get()), 1) << narrow(c.list);
        EXPECT_EQ(workspace.modified, 1) << narrow(c.list);
    }
    latebound::put(geometry.get(), u"Parent", Variant::fromDispatch(nullptr), true);
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
    // The triangle has four inserts: a fifth is beyond them.
    Variant beyond;
    EXPECT_EQ(invoke(itemOf(component.get(), u"Triangles", 0).get(), u"Clip", DISPATCH_METHOD, {Variant::fromAnsi("%5")}, &beyond),
              E_OUTOFMEMORY);
    BSTR empty = nullptr;
    ASSERT_EQ(ComPtr<IGeometry>::query(geometry.get())->Clip(nullptr, &empty), S_OK);
    EXPECT_EQ(bstrView(empty), u"");
    SysFreeString(empty);
}

TEST(GeometryObjects, CloneIsDeepAndKeepsTheOrder) {
    ComPtr<IDispatch> original = sampleGeometry();
    ComPtr<IDispatch> extra = newObject(u"nv_bench.component");
    putText(extra.get(), u"Name", "Top");
    addTo(original.get(), u"Components", extra.get());
    latebound::put(original.get(), u"Modified", Variant::fromShort(0));

    Variant result;
    ASSERT_EQ(latebound::call(original.get(), u"Clone", {}, &result), S_OK);
    IDispatch* copy = result.pdispVal;
    expectProperties(copy, {{"Name", "Frame"}, {"CoordinateType", "1402"}});
    ASSERT_EQ(countOf(copy, u"Components"), 2);
    EXPECT_EQ(getText(itemOf(copy, u"Components", 1).get(), u"Name"), "Top");
    ComPtr<IDispatch> component = itemOf(copy, u"Components", 0);
    ComPtr<IDispatch> source = itemOf(original.get(), u"Components", 0);
    EXPECT_NE(component.get(), source.get());
    expectProperties(component.get(), {{"FullName", "Frame.Base"}, {"X", "1.5"}, {"CoordinateType", "1403"}, {"ColorIndex", "7"}});
    for (const char16_t* list : {u"Nodes", u"Lines", u"Triangles"})
        EXPECT_EQ(countOf(component.get(), list), countOf(source.get(), list)) << narrow(list);
    ComPtr<IDispatch> node = itemOf(component.get(), u"Nodes", 0);
    expectProperties(node.get(), {{"Name", "N1"}, {"MasterNode2", "N3"}, {"Z", "0.75"}});
    EXPECT_EQ(getText(itemOf(component.get(), u"Nodes", 1).get(), u"Name"), "N2");

    // Changing the copy leaves the original as it was, and marks only the copy's side.
    putText(node.get(), u"Name", "Moved");
    putText(itemOf(component.get(), u"Triangles", 0).get(), u"ColorIndex", "1");
    EXPECT_EQ(getText(itemOf(source.get(), u"Nodes", 0).get(), u"Name"), "N1");
    EXPECT_EQ(getText(itemOf(source.get(), u"Triangles", 0).get(), u"ColorIndex"), "9");
    EXPECT_EQ(modifiedOf(original.get()), 0);
    EXPECT_EQ(modifiedOf(copy), 1);
}

TEST(GeometryObjects, ComponentCloneKeepsTheParentWithoutMarkingIt) {
    ComPtr<IDispatch> geometry = sampleGeometry();
    latebound::put(geometry.get(), u"Modified", Variant::fromShort(0));
    Variant result;
    ASSERT_EQ(latebound::call(itemOf(geometry.get(), u"Components", 0).get(), u"Clone", {}, &result), S_OK);
    EXPECT_EQ(getText(result.pdispVal, u"FullName"), "Frame.Base");
    EXPECT_EQ(getText(itemOf(result.pdispVal, u"Nodes", 0).get(), u"FullName"), "Frame.Base.N1");
    EXPECT_EQ(modifiedOf(geometry.get()), 0);
}

TEST(GeometryObjects, FieldsListTheFlagAlone) {
    ComPtr<IDispatch> geometry = newObject(u"nv_bench.geometry");
    ComPtr<IFields> fields;
    ASSERT_EQ(ComPtr<IGeometry>::query(geometry.get())->get_Fields(fields.out()), S_OK);
    LONG count = 0;
    fields->get_Count(&count);
    ASSERT_EQ(count, 1);
    ComPtr<IField> field;
    ASSERT_EQ(fields->get_Item(Variant::fromLong(0), field.out()), S_OK);
    Bstr name, value;
    field->get_Name(name.out());
    field->get_Value(value.out());
    EXPECT_EQ(name.ansi(), "Modified");
    EXPECT_EQ(value.ansi(), "0");
}

}  // namespace
}  // namespace nvdl::test

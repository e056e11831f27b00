// Workspace objects through a universal file and back: measurements keep function type, names,
// channels, axes and values; a geometry keeps its numbered nodes and its lines; a mode keeps its
// frequency, damping and shape; a file in other units is brought to SI.
#include "../geometry/GeometryTestSupport.h"
#include "../geometry/ModeTestSupport.h"
#include "UffTestSupport.h"
#include "exchange/UffMapping.h"
#include "exchange/UffReader.h"
#include "exchange/UffWriter.h"
#include "project/Workspace.h"

namespace nvdl::test {
namespace {

using namespace exchange::uff;

CWorkspace& workspaceOf(const ComPtr<IDispatch>& object) { return *static_cast<CWorkspace*>(static_cast<IWorkspace*>(object.get())); }

ComPtr<IDispatch> throughFile(const Content& content, bool as2411) {
    File file, read;
    std::string error;
    EXPECT_TRUE(fileFromContent(content, as2411, file, error)) << error;
    EXPECT_TRUE(readText(writeText(file), read, error)) << error;
    ComPtr<IDispatch> target(CWorkspace::create());
    EXPECT_TRUE(addFileToWorkspace(read, workspaceOf(target), "Beam", error)) << error;
    return target;
}

TEST(UffWorkspace, MeasurementsGeometryAndModesComeBack) {
    auto frf = buildMeasurement({"H acc", "FRF", "Frequency", "Acceleration", 0, 0, {1.0f / 3, -2, 3e-7f}, {0.5f, 0, -1},
                                 {10, 12.5f, 40}, "Accelerometer 2+Z", "Hammer"});
    frf->put_ResponseChannel(2);
    frf->put_ReferenceChannel(1);
    auto time = buildMeasurement({"Force", "Time record", "Time", "Force", 0.25f, 0.001f, {1, 2, 3, 4}});
    ComPtr<IDispatch> geometry = newWith(u"nv_bench.geometry", "Name=Frame");
    ComPtr<IDispatch> component = newWith(u"nv_bench.component", "Name=Base");
    call(component.get(), u"XYZ", DISPATCH_METHOD, three(1, 2, 3));
    for (const char* name : {"7", "9", "11"}) {
        ComPtr<IDispatch> node = newWith(u"nv_bench.node", std::string("Name=") + name);
        call(node.get(), u"Coordinate", DISPATCH_PROPERTYPUT, three(0.5f, -0.25f, std::atoi(name)));
        addTo(component.get(), u"Nodes", node.get());
    }
    for (auto [a, b] : {std::pair{"7", "9"}, std::pair{"9", "11"}, std::pair{"7", "11"}}) {
        ComPtr<IDispatch> line = newObject(u"nv_bench.line");
        call(line.get(), u"Node12", DISPATCH_METHOD, {Variant::fromAnsi(a), Variant::fromAnsi(b)});
        addTo(component.get(), u"Lines", line.get());
    }
    addTo(geometry.get(), u"Components", component.get());
    ComPtr<IMode> mode = newMode();
    mode->put_Name(Bstr(std::string_view("Bending")).get());
    mode->put_Frequency(12.5f);
    mode->put_Damping(0.02f);
    addCoefficient(mode.get(), kShape, "Base", "9", 1503, 1.0f, -0.5f);
    addCoefficient(mode.get(), kShape, "Base", "7", 1501, 0.25f, 0.0f);

    for (bool as2411 : {true, false}) {
        ComPtr<IDispatch> target = throughFile({{static_cast<IMeasurement*>(frf.get()), static_cast<IMeasurement*>(time.get())},
                                                {geometry.get()}, {mode.get()}},
                                               as2411);
        CWorkspace& w = workspaceOf(target);
        ASSERT_EQ(w.measurements().size(), 2u);
        IDispatch* m = w.measurements().itemAt(0);
        expectTexts(m, "Name=H acc;FunctionType=1011;Response=Accelerometer 2+Z;Reference=Hammer;ResponseChannel=2;"
                       "ReferenceChannel=1;Complex=-1;XDimension=Frequency;Size=3");
        float re[3], im[3], x[3];
        auto read = ComPtr<IMeasurement>::query(m);
        read->GetYValues(0, 3, re, im);
        read->GetXValues(0, 3, x);
        EXPECT_EQ(std::vector<float>(re, re + 3), (std::vector<float>{1.0f / 3, -2, 3e-7f}));
        EXPECT_EQ(std::vector<float>(im, im + 3), (std::vector<float>{0.5f, 0, -1}));
        EXPECT_EQ(std::vector<float>(x, x + 3), (std::vector<float>{10, 12.5f, 40}));
        expectTexts(w.measurements().itemAt(1), "Name=Force;FunctionType=1001;XStart=0.25;XIncrement=0.001;Complex=0;"
                                                "XAxisType=1100;YDimension=Force");

        ASSERT_EQ(w.geometries().size(), 1u);
        IDispatch* g = w.geometries().itemAt(0);
        EXPECT_EQ(getText(g, u"Name"), "Beam");
        ComPtr<IDispatch> c = itemOf(g, u"Components", 0);
        ASSERT_EQ(countOf(c.get(), u"Nodes"), 3);
        expectTexts(itemOf(c.get(), u"Nodes", 2).get(), "Name=11;X=1.5;Y=1.75;Z=14");
        ASSERT_EQ(countOf(c.get(), u"Lines"), 3);
        expectTexts(itemOf(c.get(), u"Lines", 2).get(), "Node1=7;Node2=11");

        ASSERT_EQ(w.modes().size(), 1u);
        auto shape = ComPtr<IMode>::query(w.modes().itemAt(0));
        expectTexts(shape.get(), "Name=Bending;Frequency=12.5;Damping=0.02");
        ASSERT_EQ(countOf(shape.get(), u"Shape"), 2);
        EXPECT_EQ(coeffText(shape.get(), kShape, 0), "Beam.9 1503 1 -0.5");
        EXPECT_EQ(coeffText(shape.get(), kShape, 1), "Beam.7 1501 0.25 0");
    }
}

TEST(UffWorkspace, ValuesInOtherUnitsAreBroughtToSi) {
    const std::string text =
        "    -1\n   164\n         2Inch (pound f)              2\n"
        "  2.54000000000000000D-02  4.44822161526050000D+00  1.00000000000000000D+00\n  2.73150000000000000D+02\n    -1\n"
        "    -1\n    15\n         5         0         0         1  1.00000E+00  2.00000E+00 -4.00000E+00\n    -1\n"
        "    -1\n    58\nacc\nNONE\nNONE\nNONE\nNONE\n"
        "    1         1    1         0 NONE             5   3 NONE             0   0\n"
        "         2         2         1  0.00000E+00  1.00000E-03  0.00000E+00\n"
        "        17    0    0    0 NONE                 NONE\n"
        "        12    1    0    0 NONE                 NONE\n"
        "         0    0    0    0 NONE                 NONE\n"
        "         0    0    0    0 NONE                 NONE\n"
        "  1.00000E+02 -1.00000E+01\n    -1\n";
    File file;
    std::string error;
    ASSERT_TRUE(readText(text, file, error)) << error;
    ComPtr<IDispatch> target(CWorkspace::create());
    ASSERT_TRUE(addFileToWorkspace(file, workspaceOf(target), "Plate", error)) << error;
    CWorkspace& w = workspaceOf(target);
    ASSERT_EQ(w.measurements().size(), 1u);
    expectTexts(w.measurements().itemAt(0), "Name=acc;FunctionType=1001;Response=5+Z;ResponseChannel=5;"
                                            "XDimension=Time;YDimension=Acceleration");
    float re[2];
    ComPtr<IMeasurement>::query(w.measurements().itemAt(0))->GetYValues(0, 2, re, nullptr);
    EXPECT_FLOAT_EQ(re[0], 2.54f);
    EXPECT_FLOAT_EQ(re[1], -0.254f);
    ComPtr<IDispatch> c = itemOf(w.geometries().itemAt(0), u"Components", 0);
    expectTexts(itemOf(c.get(), u"Nodes", 0).get(), "Name=5;X=0.0254;Y=0.0508;Z=-0.1016");
}

}  // namespace
}  // namespace nvdl::test

// Modes and their coefficients as objects: enumerations, amplitude and phase, the default
// description and the clip, Clone and the Modified climb.
#include <cmath>

#include "../frame/ForeignParent.h"
#include "ModeTestSupport.h"

namespace nvdl::test {
namespace {

// One table for both classes; a number is taken as it is, a text must be in the table (case counts),
// and a refused value leaves the property as it was.
TEST(Mode, EnumerationsByCodeAndText) {
    const struct { LONG code; const char* text; } texts[] = {
        {1501, "X"}, {1506, "Phi"}, {1602, "Operating"}, {1705, "Circle fit"}, {1709, "Ibrahim time domain method"},
        {1500, ""}, {1401, ""}};
    ComPtr<IMode> mode = newMode();
    ComPtr<IModeCoeff> coeff = newCoeff();
    for (const auto& t : texts) {
        Bstr a, b;
        mode->Translate(t.code, a.out()), coeff->Translate(t.code, b.out());
        EXPECT_EQ(a.ansi() + "|" + b.ansi(), std::string(t.text) + "|" + t.text) << t.code;
    }
    const struct { const char16_t* property; Variant value; HRESULT status; const char* after; } puts[] = {
        {u"Type", Variant::fromAnsi("Operating"), S_OK, "1602"}, {u"Type", Variant::fromLong(1603), S_OK, "1603"},
        {u"Type", Variant::fromAnsi("1604"), S_OK, "1604"}, {u"Type", Variant::fromAnsi("operating"), E_INVALIDARG, "1600"},
        {u"Method", Variant::fromAnsi("FDPI"), S_OK, "1708"}, {u"Direction", Variant::fromAnsi("Z"), S_OK, "1503"},
        {u"Direction", Variant::fromAnsi("Z Direction"), E_INVALIDARG, "1500"}};
    for (const auto& p : puts) {
        ComPtr<IMode> m = newMode();
        ComPtr<IModeCoeff> c = newCoeff();
        IDispatch* object = std::u16string_view(p.property) == u"Direction" ? static_cast<IDispatch*>(c.get()) : m.get();
        EXPECT_EQ(latebound::put(object, p.property, p.value), p.status) << narrow(p.property);
        EXPECT_EQ(getText(object, p.property), p.after) << narrow(p.property);
    }
}

// Set by real and imaginary parts, or by amplitude and phase in degrees (which leaves the flag).
TEST(ModeCoeff, AmplitudeAndPhase) {
    const struct { float re, im, amplitude, phase; bool polar; } rows[] = {
        {0, 0, 0, 0, false}, {-1, 0, 1, 180, false}, {3, -4, 5, -53.130102f, false},
        {-1, -1, std::sqrt(2.0f), -135, false}, {0, 2, 2, 90, true}};
    for (const auto& r : rows) {
        ComPtr<IModeCoeff> c = newCoeff();
        if (r.polar) c->SetAmplitudePhase(r.amplitude, r.phase);
        else c->put_Real(r.re), c->put_Imaginary(r.im);
        float re = -9, im = -9, amplitude = -9, phase = -9;
        c->get_Real(&re), c->get_Imaginary(&im), c->Amplitude(&amplitude), c->Phase(&phase);
        EXPECT_NEAR(std::hypot(re - r.re, im - r.im), 0, 1e-6);
        EXPECT_NEAR(amplitude, r.amplitude, 1e-5) << r.re << "," << r.im;
        EXPECT_NEAR(phase, r.phase, 1e-4) << r.re << "," << r.im;
        EXPECT_EQ(getText(c.get(), u"Modified"), r.polar ? "0" : "1");
    }
}

TEST(Mode, DescriptionClipAndLocation) {
    ComPtr<IMode> mode = newMode();
    mode->put_Frequency(12.345f);
    EXPECT_EQ(getText(mode.get(), u"Description"), "Mode 12.35 Hz");
    Bstr text;
    ASSERT_EQ(mode->Clip(Bstr(u"[%1|%2|%3]").get(), text.out()), S_OK);
    EXPECT_EQ(text.ansi(), "[|Unknown type|Unknown method]");  // the stored text, not the default
    ComPtr<IModeCoeff> c = newCoeff();
    EXPECT_EQ(c->Location(Bstr(u"Wing").get(), Bstr(u"N7").get(), Variant::fromAnsi("Sideways")), E_INVALIDARG);
    c->put_Direction(Variant::fromAnsi("Theta"));
    ASSERT_EQ(c->Clip(Bstr(u"%1.%2 %3 %4!d! %5!d!").get(), text.out()), S_OK);
    EXPECT_EQ(text.ansi(), "Wing.N7 Theta 0 0");  // the names stay although the direction was refused
}

// Every list is cloned item by item; the clone's coefficients belong to the clone, and a change of
// one climbs to the clone and on to its workspace.
TEST(Mode, CloneIsDeepAndChangesClimb) {
    ComPtr<IMode> mode = newMode();
    mode->put_Method(Variant::fromLong(1707));
    LONG index = -1;
    ASSERT_EQ(mode->AddShape(newCoeff().get(), &index), S_OK);
    EXPECT_EQ(index, 0);
    addCoefficient(mode.get(), kShape, "C", "N2", 1502, 1, 2);
    addCoefficient(mode.get(), kOrigShape, "C", "N3", 1503, 3, 4);
    addCoefficient(mode.get(), kOrigParticip, "D", "N5", 1505, 7, 8);
    ComPtr<IMode> copy;
    ASSERT_EQ(mode->Clone(copy.out()), S_OK);
    EXPECT_EQ(getText(copy.get(), u"Method"), "1707");
    const struct { ListGetter list; LONG index; const char* text; } items[] = {
        {kShape, 1, "C.N2 1502 1 2"}, {kShape, 2, "<none>"}, {kOrigShape, 0, "C.N3 1503 3 4"},
        {kParticipation, 0, "<none>"}, {kOrigParticip, 0, "D.N5 1505 7 8"}};
    for (const auto& i : items) EXPECT_EQ(coeffText(copy.get(), i.list, i.index), i.text);
    ComPtr<IModeCoeff> cloned = coefficientAt(copy.get(), kOrigParticip, 0);
    ForeignParent workspace(IID_IWorkspace);
    copy->put_Parent(&workspace);
    copy->put_Modified(0), cloned->put_Modified(0);  // a cleared flag stays where it is
    cloned->put_Real(-1);
    EXPECT_EQ(coeffText(mode.get(), kOrigParticip, 0), "D.N5 1505 7 8");
    EXPECT_EQ(getText(copy.get(), u"Modified"), "1");
    EXPECT_NE(workspace.modified, 0);
}

}  // namespace
}  // namespace nvdl::test

// The block size an octave analysis needs, asked of an octave section with a stand-in setup that
// answers its octave section and an acquisition with a sample frequency and a computation block size.
#include "SectionTestSupport.h"
#include "frame/ObjectFrame.h"
#include "nvdl/IOctave.h"

namespace nvdl::test {

inline constexpr IID IID_IStandInAcquisition{0x1b2c3d4e, 0x0101, 0x4000, {0x80, 0, 0, 0, 0, 0, 1, 1}};
inline constexpr IID IID_IStandInSetup{0x1b2c3d4e, 0x0102, 0x4000, {0x80, 0, 0, 0, 0, 0, 1, 2}};

#define NVDL_ISTANDINACQUISITION_MEMBERS(M)       \
    M(get, SampleFrequency, (float* v))           \
    M(get, ComputationBlocksize, (LONG* v))       \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IStandInAcquisition, NVDL_ISTANDINACQUISITION_MEMBERS);

#define NVDL_ISTANDINSETUP_MEMBERS(M)             \
    M(get, Octave, (IDispatch** v))               \
    M(get, Acquisition, (IDispatch** v))          \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IStandInSetup, NVDL_ISTANDINSETUP_MEMBERS);

namespace {

class CStandInAcquisition final : public CObjectFrame<CStandInAcquisition, IStandInAcquisition> {
public:
    CStandInAcquisition(float sampleFrequency, LONG computationBlocksize)
        : CObjectFrame(IID_IStandInAcquisition), m_sampleFrequency(sampleFrequency),
          m_computationBlocksize(computationBlocksize) {}
    HRESULT get_SampleFrequency(float* v) override { return field::give(m_sampleFrequency, v); }
    HRESULT get_ComputationBlocksize(LONG* v) override { return field::give(m_computationBlocksize, v); }

private:
    float m_sampleFrequency;
    LONG m_computationBlocksize;
};

// A section left out is answered as a failure, as a setup of another kind would.
class CStandInSetup final : public CObjectFrame<CStandInSetup, IStandInSetup> {
public:
    CStandInSetup(ComPtr<IDispatch> octave, ComPtr<IDispatch> acquisition)
        : CObjectFrame(IID_IStandInSetup), m_octave(std::move(octave)), m_acquisition(std::move(acquisition)) {}
    HRESULT get_Octave(IDispatch** v) override { return give(m_octave, v); }
    HRESULT get_Acquisition(IDispatch** v) override { return give(m_acquisition, v); }

private:
    static HRESULT give(const ComPtr<IDispatch>& section, IDispatch** v) {
        if (!v) return E_POINTER;
        if (!section) return E_NOTIMPL;
        *v = section.get();
        section->AddRef();
        return S_OK;
    }
    ComPtr<IDispatch> m_octave;
    ComPtr<IDispatch> m_acquisition;
};

ComPtr<IDispatch> octaveSection(const char* start, const char* stop) {
    ComPtr<IDispatch> octave = newObject(u"nv_bench.octave");
    putProperties(octave.get(), {{"StartFrequency", start}, {"StopFrequency", stop}});
    return octave;
}

ComPtr<IDispatch> standInSetup(ComPtr<IDispatch> octave, ComPtr<IDispatch> acquisition) {
    return ComPtr<IDispatch>((new CStandInSetup(std::move(octave), std::move(acquisition)))->dispatch());
}

ComPtr<IDispatch> standInAcquisition(float sampleFrequency, LONG computationBlocksize) {
    return ComPtr<IDispatch>((new CStandInAcquisition(sampleFrequency, computationBlocksize))->dispatch());
}

HRESULT blockSize(IDispatch* octave, IDispatch* setup, float time, LONG* result) {
    Variant value;
    HRESULT h = invoke(octave, u"OctaveTimeBlockSize", DISPATCH_PROPERTYGET,
                       {Variant::fromDispatch(setup), Variant::fromFloat(time)}, &value);
    if (SUCCEEDED(h)) *result = value.lVal;
    return h;
}

// The minimum for 20 Hz to 10 kHz, worked by hand: x = log10(10000) - log10(20) - 0.1
// = 4 - 1.30103 - 0.1 = 2.59897; x / log10(2) + 0.5 = 8.63359 + 0.5 = 9.13359, truncated 9;
// n = 10, and the minimum is 2^9 = 512. At 51,200 Hz, 0.1 s is 5,120 samples ("5120.000000"),
// 5120 / 512 + 0.5 = 10.5 minimum blocks, read back as 10: 5,120.
TEST(OctaveBlockSize, Cases) {
    struct Case {
        const char* what;
        const char* start;
        const char* stop;
        float sampleFrequency;
        LONG computationBlocksize;
        float time;
        HRESULT status;
        LONG result;
    };
    const Case cases[] = {
        {"the worked example", "20", "10000", 51200, 8192, 0.1f, S_OK, 5120},
        {"12.5 blocks round up to 13", "20", "10000", 51200, 8192, 0.125f, S_OK, 6656},
        {"767.9 samples truncate to 767, 1.998 blocks to 1", "20", "10000", 1000, 8192, 0.7679f, S_OK, 512},
        {"too few samples take the minimum", "20", "10000", 1000, 8192, 0.1f, S_OK, 512},
        // x = 3 - 0.1 = 2.9; 2.9 / 0.30103 + 0.5 = 10.13, n = 11
        {"100 Hz to 100 kHz needs 1024", "100", "100000", 1, 1, 0.5f, S_OK, 1024},
        // x = 0.30103 - 0.1 = 0.20103; 0.20103 / 0.30103 + 0.5 = 1.17, n = 2; 5 samples, 2.5 + 0.5 = 3 blocks
        {"one octave needs 2", "1000", "2000", 2, 1, 2.5f, S_OK, 6},
        // x = -0.1 gives a negative count, raised to n = 1: the minimum is 1 and 2.5 samples make 2
        {"no span needs 1", "20", "20", 1000, 1, 0.0025f, S_OK, 2},
        {"stop below start", "30", "20", 51200, 8192, 0.1f, E_FAIL, 0},
        {"a negative start", "-1", "20", 51200, 8192, 0.1f, E_FAIL, 0},
        {"a span from 0 Hz", "0", "20", 51200, 8192, 0.1f, E_FAIL, 0},
        {"a span of 2^31 and more", "1E-20", "1E+20", 51200, 8192, 0.1f, E_FAIL, 0},
        {"no time", "20", "10000", 51200, 8192, 0.0f, E_FAIL, 0},
        {"a negative time", "20", "10000", 51200, 8192, -1.0f, E_FAIL, 0},
        {"no sample frequency", "20", "10000", 0, 8192, 0.1f, E_FAIL, 0},
        {"no computation block size", "20", "10000", 51200, 0, 0.1f, E_FAIL, 0},
        {"a result beyond a long", "20", "10000", 3e9f, 8192, 1.0f, E_FAIL, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        ComPtr<IDispatch> setup = standInSetup(octaveSection(c.start, c.stop),
                                               standInAcquisition(c.sampleFrequency, c.computationBlocksize));
        ComPtr<IDispatch> octave = newObject(u"nv_bench.octave");
        LONG result = 0;
        EXPECT_EQ(blockSize(octave.get(), setup.get(), c.time, &result), c.status);
        EXPECT_EQ(result, c.result);
    }
}

// The span is that of the setup's octave section, not of the section asked.
TEST(OctaveBlockSize, TheSpanComesFromTheSetup) {
    ComPtr<IDispatch> asked = octaveSection("1000", "2000");
    ComPtr<IDispatch> setup = standInSetup(octaveSection("20", "10000"), standInAcquisition(1000, 1));
    LONG result = 0;
    ASSERT_EQ(blockSize(asked.get(), setup.get(), 0.001f, &result), S_OK);
    EXPECT_EQ(result, 512);
}

TEST(OctaveBlockSize, BadReferences) {
    ComPtr<IDispatch> octave = newObject(u"nv_bench.octave");
    struct Case {
        const char* what;
        ComPtr<IDispatch> setup;
    };
    const Case cases[] = {
        {"no setup", {}},
        {"a setup without an octave section", standInSetup({}, standInAcquisition(51200, 8192))},
        {"a setup without an acquisition", standInSetup(octaveSection("20", "10000"), {})},
        {"an object that is no setup", standInAcquisition(51200, 8192)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        LONG result = 7;
        EXPECT_EQ(blockSize(octave.get(), c.setup.get(), 0.1f, &result), E_FAIL);
        EXPECT_EQ(result, 7);
    }
    ComPtr<IOctave> direct = ComPtr<IOctave>::query(octave.get());
    ASSERT_TRUE(direct);
    EXPECT_EQ(direct->get_OctaveTimeBlockSize(nullptr, 0.1f, nullptr), E_POINTER);
}

}  // namespace
}  // namespace nvdl::test

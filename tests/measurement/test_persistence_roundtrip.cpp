// The stored measurement record written by today's writer: every header field, the parameters and
// the vectors come back through a memory stream and through a compound file; the helpers answer for
// their measurement; the bytes stand where the layout puts them.
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "PagingFixture.h"
#include "PersistenceTestSupport.h"
#include "nvdl/Storage.h"

namespace nvdl::test {
namespace {

using I = IMeasurement;

const std::string kLongUserId(120, 'u');

Variant floatVariant(const std::vector<float>& values) {
    Variant v;
    v.vt = VT_ARRAY | VT_R4;
    v.parray = makeFloatArray(values);
    return v;
}


// A measurement with every stored field away from its default.
IMeasurement* fullMeasurement() {
    IMeasurement* m = newMeasurement();
    Variant re = floatVariant({1.0f, -2.5f, 3.25f, 4.0f, 1e-3f}), im = floatVariant({0.5f, 0.25f, -1.0f, 8.0f, -9.5f});
    EXPECT_EQ(m->YArray(&re, 5, &im, Bstr(std::string_view("V")).get()), S_OK);
    EXPECT_EQ(m->put_XArray(floatVariant({10.0f, 20.0f, 40.0f, 80.0f, 160.0f})), S_OK);
    const std::pair<HRESULT (I::*)(BSTR), std::string> texts[] = {
        {&I::put_Name, "Bearing run 7, with a name longer than its field holds"}, {&I::put_Response, "acc 1"},
        {&I::put_Reference, "force"}, {&I::put_XDimension, "Hz"}, {&I::put_StorageUnitX, "kHz"},
        {&I::put_StorageUnitY, "mV"}, {&I::put_TestId, "T-17"}, {&I::put_FunctionQualifier, "rms"},
        {&I::put_AcousticWeighting, "A"}, {&I::put_Environment, "lab 2"}, {&I::put_UserId, kLongUserId},
        {&I::put_ZDimension, "m"}};
    for (const auto& [put, text] : texts) EXPECT_EQ((m->*put)(Bstr(std::string_view(text)).get()), S_OK) << text;
    const std::pair<HRESULT (I::*)(VARIANT), const char*> codes[] = {
        {&I::put_FunctionType, "FRF"}, {&I::put_XAxisType, "Arbitrary"}, {&I::put_AveragingType, "Linear"},
        {&I::put_WindowType, "Hanning"}};
    for (auto [put, text] : codes) EXPECT_EQ((m->*put)(Variant::fromAnsi(text)), S_OK) << text;
    const std::pair<HRESULT (I::*)(float), float> reals[] = {
        {&I::put_XStart, 1.5f}, {&I::put_XIncrement, 0.25f}, {&I::put_AveragingParameter, 4.5f},
        {&I::put_Overlap, 0.75f}, {&I::put_WindowParameter, 2.0f}, {&I::put_Order, 2.0f}, {&I::put_RPM, 2950.0f},
        {&I::put_Z, 0.125f}, {&I::put_BandwidthCorrectionFactor, 1.5f}};
    for (auto [put, v] : reals) EXPECT_EQ((m->*put)(v), S_OK) << v;
    const std::pair<HRESULT (I::*)(LONG), LONG> counts[] = {{&I::put_ResponseChannel, 3}, {&I::put_ReferenceChannel, 7},
                                                             {&I::put_Averages, 12}, {&I::put_Power, 2},
                                                             {&I::put_Overload, 3}, {&I::put_Usage, 4}};
    for (auto [put, v] : counts) EXPECT_EQ((m->*put)(v), S_OK) << v;
    m->put_MeasurementTime(40123.625);
    addParameter(m, "Gain", "20 dB");
    addParameter(m, "Operator", "");
    addParameter(m, "Note", "second run");
    return m;
}

void expectSameRecord(IMeasurement* original, IMeasurement* loaded) {
    EXPECT_EQ(getText(loaded, u"Name"), getText(original, u"Name").substr(0, 49));
    EXPECT_EQ(getText(loaded, u"UserId"), kLongUserId.substr(0, 99));
    for (std::u16string_view name : {u"FunctionType", u"XAxisType", u"AveragingType", u"WindowType", u"Response",
                                     u"Reference", u"XDimension", u"YDimension", u"ZDimension", u"StorageUnitX",
                                     u"StorageUnitY", u"TestId", u"FunctionQualifier", u"AcousticWeighting",
                                     u"Environment", u"ResponseChannel", u"ReferenceChannel", u"Size", u"Averages",
                                     u"Power", u"Overload", u"Usage", u"FileSamples", u"Complex"})
        EXPECT_EQ(getText(loaded, name), getText(original, name)) << narrow(name);
    // Exact bits, which a text might round away.
    for (auto get : {&I::get_XStart, &I::get_XIncrement, &I::get_AveragingParameter, &I::get_Overlap, &I::get_WindowParameter,
                     &I::get_Order, &I::get_RPM, &I::get_Z, &I::get_BandwidthCorrectionFactor})
        EXPECT_EQ(value(loaded, get), value(original, get));
    EXPECT_EQ(value(loaded, &I::get_MeasurementTime), value(original, &I::get_MeasurementTime));
    EXPECT_EQ(floats(loaded, &I::get_YRealArray), floats(original, &I::get_YRealArray));
    EXPECT_EQ(floats(loaded, &I::get_YImagArray), floats(original, &I::get_YImagArray));
    EXPECT_EQ(floats(loaded, &I::get_XArray), floats(original, &I::get_XArray));
    EXPECT_EQ(parameters(loaded), parameters(original));
    EXPECT_NE(getText(loaded, u"Id"), getText(original, u"Id"));
}

std::vector<std::uint8_t> saveToBytes(IMeasurement* m) {
    IPersistStream* persist = persistOf(m, IID_IPersistStream);
    MemoryStream* stream = MemoryStream::create();
    EXPECT_EQ(persist->Save(stream, 1), S_OK);
    std::vector<std::uint8_t> bytes = stream->bytes();
    stream->Release();
    persist->Release();
    return bytes;
}

TEST(MeasurementPersistence, EveryFieldParametersAndVectorsComeBackThroughAStream) {
    IMeasurement* original = fullMeasurement();
    ASSERT_EQ(getText(original, u"YDimension"), "Voltage");
    ASSERT_EQ(getText(original, u"ZDimension"), "Length");
    std::vector<std::uint8_t> bytes = saveToBytes(original);
    Loaded loaded(bytes, IID_IPersistStream);
    ASSERT_EQ(loaded.result, S_OK);
    expectSameRecord(original, loaded);
    EXPECT_EQ(parameters(loaded), (std::vector<std::string>{"Gain=20 dB", "Operator=", "Note=second run"}));

    // A second save of what was read gives the same bytes, but for DataLoaded: the samples are in
    // memory now.
    std::vector<std::uint8_t> again = saveToBytes(loaded);
    ASSERT_EQ(again.size(), bytes.size());
    EXPECT_EQ(le::i32(&again[920 + 652]), 1);
    le::put32(&again[920 + 652], le::u32(&bytes[920 + 652]));
    EXPECT_EQ(again, bytes);
    original->Release();
}

TEST(MeasurementPersistence, ARealRecordWithoutParametersOrXVectorComesBack) {
    IMeasurement* original = newMeasurement();
    std::vector<float> re(1000);
    for (std::size_t i = 0; i < re.size(); ++i) re[i] = static_cast<float>(i) * 0.5f - 3.0f;
    Variant array = floatVariant(re);
    ASSERT_EQ(original->YArray(&array, 1000, nullptr, Bstr(std::string_view("m/s^2")).get()), S_OK);
    std::vector<std::uint8_t> bytes = saveToBytes(original);
    EXPECT_EQ(bytes.size(), 920u + 656u + 116u + 4000u);
    Loaded loaded(bytes, IID_IPersistStream);
    ASSERT_EQ(loaded.result, S_OK);
    EXPECT_EQ(floats(loaded, &I::get_YRealArray), re);
    expectTexts(loaded, {{u"Complex", "0"}, {u"YDimension", "Acceleration"}});
    EXPECT_TRUE(parameters(loaded).empty());
    original->Release();
}

TEST(MeasurementPersistence, EveryFieldComesBackThroughACompoundFileStorage) {
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("nvdl_persist_" + std::to_string(::getpid()) + ".wkd");
    IMeasurement* original = fullMeasurement();
    {
        IStorage* root = nullptr;
        ASSERT_EQ(createCompoundFile(path, STGM_CREATE | STGM_READWRITE, &root), S_OK);
        IPersistStorage* persist = persistOf<IPersistStorage>(original, IID_IPersistStorage);
        EXPECT_EQ(persist->Save(root, 0), S_OK);
        EXPECT_EQ(persist->Save(root, 1), S_OK);  // a second save replaces the stream
        persist->Release();
        EXPECT_EQ(root->Commit(STGC_DEFAULT), S_OK);
        root->Release();
    }
    IStorage* root = nullptr;
    ASSERT_EQ(openCompoundFile(path, STGM_READ, &root), S_OK);
    std::vector<STATSTG> elements;
    root->EnumElements(&elements);
    ASSERT_EQ(elements.size(), 1u);
    EXPECT_EQ(elements[0].name, u"Measurement");
    IMeasurement* loaded = newMeasurement();
    IPersistStorage* persist = persistOf<IPersistStorage>(loaded, IID_IPersistStorage);
    ASSERT_EQ(persist->Load(root), S_OK);
    expectSameRecord(original, loaded);
    root->Release();

    IStorage* empty = nullptr;
    ASSERT_EQ(createCompoundFile(path, STGM_CREATE | STGM_READWRITE, &empty), S_OK);
    EXPECT_EQ(persist->Load(empty), STG_E_FILENOTFOUND);
    persist->Release();
    empty->Release();
    loaded->Release();
    original->Release();
    std::filesystem::remove(path);
}

// What the reader takes back is pinned by the records built byte by byte and the round trips
// above; these are the parts of the blocks it passes over or keeps apart.
TEST(MeasurementPersistence, TheWriterFillsTheBlocksOfTheCurrentGeneration) {
    IMeasurement* m = fullMeasurement();
    CMeasurement::from(m)->Location(Bstr(std::string_view("C:/data/run.wkd")).get(), -1,
                                    Bstr(std::string_view("File 0")).get(), Bstr(std::string_view("Meas0")).get(), 20030819);
    const std::vector<std::uint8_t> b = saveToBytes(m);
    const std::uint8_t* p = b.data();
    EXPECT_EQ(le::i32(p + 0), 20071012);
    EXPECT_EQ(le::i32(p + 820), 2 * 3 + 4 + 5 + 8 + 0 + 4 + 10);  // two bytes a pair and the texts
    EXPECT_TRUE(std::all_of(p + 860, p + 920, [](std::uint8_t c) { return c == 0; }));
    const std::uint8_t* b2 = p + 920;
    EXPECT_EQ(le::i32(b2 + 0), 20071012);
    EXPECT_EQ(le::i32(b2 + 28), 1);
    EXPECT_EQ(le::text(b2 + 32, 100), "File 0");
    EXPECT_EQ(le::text(b2 + 132, 400), "");  // a complete record keeps no file
    EXPECT_EQ(le::text(b2 + 532, 100), "Meas0");
    EXPECT_EQ(le::i16(b2 + 632), -1);
    EXPECT_EQ(le::i32(p + 1576), 20071012);
    EXPECT_EQ(b.size(), 1692u + 3 * 5 * 4 + 37);  // the three vectors and the pairs behind the blocks
    m->Release();
}

class MeasurementPersistencePaging : public PagingSettings {};

TEST_F(MeasurementPersistencePaging, ALongRecordPagesInItsFirstBlockOnly) {
    useSettings(4);
    IMeasurement* original = newMeasurement();
    std::vector<float> re(10), im(10);
    for (std::size_t i = 0; i < re.size(); ++i) {
        re[i] = static_cast<float>(i);
        im[i] = -static_cast<float>(i);
    }
    Variant reArray = floatVariant(re), imArray = floatVariant(im);
    ASSERT_EQ(original->YArray(&reArray, 10, &imArray, nullptr), S_OK);
    addParameter(original, "Gain", "6");
    std::vector<std::uint8_t> bytes = saveToBytes(original);
    original->Release();
    ASSERT_EQ(le::i32(&bytes[328]), 10);
    {
        Loaded loaded(bytes, IID_IPersistStream);
        ASSERT_EQ(loaded.result, S_OK);
        expectTexts(loaded, {{u"Size", "4"}, {u"FileSamples", "10"}, {u"IsUncompleted", "-1"}});
        EXPECT_EQ(floats(loaded, &I::get_YRealArray), (std::vector<float>{0.0f, 1.0f, 2.0f, 3.0f}));
        EXPECT_EQ(floats(loaded, &I::get_YImagArray), (std::vector<float>{0.0f, -1.0f, -2.0f, -3.0f}));
        EXPECT_EQ(parameters(loaded), (std::vector<std::string>{"Gain=6"}));
    }
    // A stream too short for the block falls back to the whole stored record in memory.
    bytes.resize(1692 + 80);
    le::put32(&bytes[328], 2);
    le::put32(&bytes[840], 0);
    le::put32(&bytes[920 + 636], 1000);
    Loaded loaded(bytes, IID_IPersistStream);
    ASSERT_EQ(loaded.result, S_OK);
    expectTexts(loaded, {{u"Size", "2"}, {u"FileSamples", "2"}, {u"IsUncompleted", "0"}});
    EXPECT_EQ(floats(loaded, &I::get_YRealArray), (std::vector<float>{0.0f, 1.0f}));
}

TEST(MeasurementPersistence, HelpersAnswerForTheirMeasurement) {
    IMeasurement* m = newMeasurement();
    IPersistStream* standard = persistOf(m, IID_IPersistStream);
    IPersistStream* eighth = persistOf(m, IID_IMeasurementPersistGeneration8);
    EXPECT_EQ(standard, eighth);
    const IID* ids[] = {&IID_IMeasurementPersistGeneration1, &IID_IMeasurementPersistGeneration2,
                        &IID_IMeasurementPersistGeneration3, &IID_IMeasurementPersistGeneration4,
                        &IID_IMeasurementPersistGeneration5, &IID_IMeasurementPersistGeneration6,
                        &IID_IMeasurementPersistGeneration7};
    for (const IID* id : ids) {
        IPersistStream* p = persistOf(m, *id);
        ASSERT_NE(p, nullptr);
        EXPECT_NE(p, standard);
        CLSID clsid{};
        EXPECT_EQ(p->GetClassID(&clsid), S_OK);
        EXPECT_EQ(clsid, CLSID_CMeasurement);
        std::uint64_t size = 1;
        EXPECT_EQ(p->GetSizeMax(&size), S_OK);
        EXPECT_EQ(size, 0u);
        p->Release();
    }
    // The helpers' references are the measurement's.
    const ULONG throughHelper = standard->AddRef();
    EXPECT_EQ(m->AddRef(), throughHelper + 1);
    m->Release();
    m->Release();
    IMeasurement* back = nullptr;
    EXPECT_EQ(standard->QueryInterface(IID_IMeasurement, reinterpret_cast<void**>(&back)), S_OK);
    EXPECT_EQ(back, m);
    back->Release();

    m->put_Modified(0);
    EXPECT_EQ(standard->IsDirty(), S_FALSE);
    IPersistStorage* storage = persistOf<IPersistStorage>(m, IID_IPersistStorage);
    EXPECT_EQ(storage->IsDirty(), S_FALSE);
    m->put_Modified(-1);
    EXPECT_EQ(storage->IsDirty(), S_OK);
    EXPECT_EQ(storage->Load(nullptr), E_POINTER);
    EXPECT_EQ(standard->Load(nullptr), E_POINTER);
    EXPECT_EQ(standard->Save(nullptr, 0), E_POINTER);
    storage->Release();
    eighth->Release();
    standard->Release();
    m->Release();
}

}  // namespace
}  // namespace nvdl::test

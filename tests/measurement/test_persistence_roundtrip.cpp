// The stored measurement record written by today's writer: every header field, the parameters and
// the vectors come back through a memory stream and through a compound file; the helpers answer for
// their measurement; the bytes stand where the layout puts them.
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "PagingFixture.h"
#include "PersistenceTestSupport.h"
#include "platform/Storage.h"

namespace nvdl::test {
namespace {

using I = IMeasurement;

const std::string kLongUserId(120, 'u');

void putVariant(IMeasurement* m, HRESULT (IMeasurement::*put)(VARIANT), const char* text) {
    EXPECT_EQ((m->*put)(Variant::fromAnsi(text)), S_OK) << text;
}

void putText(IMeasurement* m, HRESULT (IMeasurement::*put)(BSTR), const std::string& text) {
    EXPECT_EQ((m->*put)(Bstr(std::string_view(text)).get()), S_OK) << text;
}

void addParameter(IMeasurement* m, const char* name, const char* value) {
    IDispatch* object = nullptr;
    ASSERT_EQ(createInstance(CLSID_CParameter, &object), S_OK);
    nvdl::test::putText(object, u"Name", name);
    nvdl::test::putText(object, u"Value", value);
    ICollection* collection = nullptr;
    CMeasurement::from(m)->get_Parameters(&collection);
    Variant key, before, after;
    LONG index = 0;
    EXPECT_EQ(collection->Add(object, &key, &before, &after, &index), S_OK);
    collection->Release();
    object->Release();
}

// A measurement with every stored field away from its default.
IMeasurement* fullMeasurement() {
    IMeasurement* m = newMeasurement();
    putText(m, &IMeasurement::put_Name, "Bearing run 7, with a name longer than its field holds");
    putVariant(m, &IMeasurement::put_FunctionType, "FRF");
    putText(m, &IMeasurement::put_Response, "acc 1");
    m->put_ResponseChannel(3);
    putText(m, &IMeasurement::put_Reference, "force");
    m->put_ReferenceChannel(7);
    putVariant(m, &IMeasurement::put_XAxisType, "Arbitrary");
    m->put_XStart(1.5f);
    m->put_XIncrement(0.25f);
    putText(m, &IMeasurement::put_XDimension, "Hz");
    putText(m, &IMeasurement::put_StorageUnitX, "kHz");
    std::vector<float> re{1.0f, -2.5f, 3.25f, 4.0f, 1e-3f}, im{0.5f, 0.25f, -1.0f, 8.0f, -9.5f};
    Variant reArray, imArray;
    reArray.vt = imArray.vt = VT_ARRAY | VT_R4;
    reArray.parray = makeFloatArray(re);
    imArray.parray = makeFloatArray(im);
    EXPECT_EQ(m->YArray(&reArray, 5, &imArray, Bstr(std::string_view("V")).get()), S_OK);
    Variant x;
    x.vt = VT_ARRAY | VT_R4;
    std::vector<float> xs{10.0f, 20.0f, 40.0f, 80.0f, 160.0f};
    x.parray = makeFloatArray(xs);
    EXPECT_EQ(m->put_XArray(x), S_OK);
    putText(m, &IMeasurement::put_StorageUnitY, "mV");
    putVariant(m, &IMeasurement::put_AveragingType, "Linear");
    m->put_AveragingParameter(4.5f);
    m->put_Averages(12);
    m->put_Overlap(0.75f);
    putVariant(m, &IMeasurement::put_WindowType, "Hanning");
    m->put_WindowParameter(2.0f);
    m->put_MeasurementTime(40123.625);
    putText(m, &IMeasurement::put_TestId, "T-17");
    putText(m, &IMeasurement::put_FunctionQualifier, "rms");
    putText(m, &IMeasurement::put_AcousticWeighting, "A");
    putText(m, &IMeasurement::put_Environment, "lab 2");
    putText(m, &IMeasurement::put_UserId, kLongUserId);
    m->put_Order(2.0f);
    m->put_RPM(2950.0f);
    m->put_Z(0.125f);
    putText(m, &IMeasurement::put_ZDimension, "m");
    m->put_BandwidthCorrectionFactor(1.5f);
    m->put_Power(2);
    m->put_Overload(3);
    m->put_Usage(4);
    addParameter(m, "Gain", "20 dB");
    addParameter(m, "Operator", "");
    addParameter(m, "Note", "second run");
    return m;
}

void expectSameRecord(IMeasurement* original, IMeasurement* loaded) {
    EXPECT_EQ(text(loaded, &IMeasurement::get_Name), text(original, &IMeasurement::get_Name).substr(0, 49));
    using I = IMeasurement;
    for (auto get : {&I::get_FunctionType, &I::get_XAxisType, &I::get_AveragingType, &I::get_WindowType})
        EXPECT_EQ(code(loaded, get), code(original, get));
    for (auto get : {&I::get_Response, &I::get_Reference, &I::get_XDimension, &I::get_YDimension, &I::get_ZDimension,
                     &I::get_StorageUnitX, &I::get_StorageUnitY, &I::get_TestId, &I::get_FunctionQualifier,
                     &I::get_AcousticWeighting, &I::get_Environment})
        EXPECT_EQ(text(loaded, get), text(original, get));
    EXPECT_EQ(text(loaded, &I::get_UserId), kLongUserId.substr(0, 99));
    for (auto get : {&I::get_ResponseChannel, &I::get_ReferenceChannel, &I::get_Size, &I::get_Averages, &I::get_Power,
                     &I::get_Overload, &I::get_Usage, &I::get_FileSamples})
        EXPECT_EQ(value(loaded, get), value(original, get));
    for (auto get : {&I::get_XStart, &I::get_XIncrement, &I::get_AveragingParameter, &I::get_Overlap, &I::get_WindowParameter,
                     &I::get_Order, &I::get_RPM, &I::get_Z, &I::get_BandwidthCorrectionFactor})
        EXPECT_EQ(value(loaded, get), value(original, get));
    EXPECT_EQ(value(loaded, &I::get_MeasurementTime), value(original, &I::get_MeasurementTime));
    EXPECT_EQ(value(loaded, &I::get_Complex), value(original, &I::get_Complex));
    EXPECT_EQ(floats(loaded, &I::get_YRealArray), floats(original, &I::get_YRealArray));
    EXPECT_EQ(floats(loaded, &I::get_YImagArray), floats(original, &I::get_YImagArray));
    EXPECT_EQ(floats(loaded, &I::get_XArray), floats(original, &I::get_XArray));
    EXPECT_EQ(parameters(loaded), parameters(original));
    EXPECT_NE(text(loaded, &I::get_Id), text(original, &I::get_Id));
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
    ASSERT_EQ(text(original, &IMeasurement::get_YDimension), "Voltage");
    ASSERT_EQ(text(original, &IMeasurement::get_ZDimension), "Length");
    std::vector<std::uint8_t> bytes = saveToBytes(original);
    IMeasurement* loaded = nullptr;
    ASSERT_EQ(loadBytes(bytes, IID_IPersistStream, &loaded), S_OK);
    expectSameRecord(original, loaded);
    EXPECT_EQ(parameters(loaded), (std::vector<std::string>{"Gain=20 dB", "Operator=", "Note=second run"}));

    // A second save of what was read gives the same bytes, but for DataLoaded: the samples are in
    // memory now.
    std::vector<std::uint8_t> again = saveToBytes(loaded);
    ASSERT_EQ(again.size(), bytes.size());
    EXPECT_EQ(le::i32(&again[920 + 652]), 1);
    le::put32(&again[920 + 652], le::u32(&bytes[920 + 652]));
    EXPECT_EQ(again, bytes);
    loaded->Release();
    original->Release();
}

TEST(MeasurementPersistence, ARealRecordWithoutParametersOrXVectorComesBack) {
    IMeasurement* original = newMeasurement();
    std::vector<float> re(1000);
    for (std::size_t i = 0; i < re.size(); ++i) re[i] = static_cast<float>(i) * 0.5f - 3.0f;
    Variant array;
    array.vt = VT_ARRAY | VT_R4;
    array.parray = makeFloatArray(re);
    ASSERT_EQ(original->YArray(&array, 1000, nullptr, Bstr(std::string_view("m/s^2")).get()), S_OK);
    std::vector<std::uint8_t> bytes = saveToBytes(original);
    EXPECT_EQ(bytes.size(), 920u + 656u + 116u + 4000u);
    IMeasurement* loaded = nullptr;
    ASSERT_EQ(loadBytes(bytes, IID_IPersistStream, &loaded), S_OK);
    EXPECT_EQ(floats(loaded, &IMeasurement::get_YRealArray), re);
    EXPECT_EQ(value(loaded, &IMeasurement::get_Complex), 0);
    EXPECT_EQ(text(loaded, &IMeasurement::get_YDimension), "Acceleration");
    EXPECT_TRUE(parameters(loaded).empty());
    loaded->Release();
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
    persist->Release();
    root->Release();

    IStorage* empty = nullptr;
    ASSERT_EQ(createCompoundFile(path, STGM_CREATE | STGM_READWRITE, &empty), S_OK);
    persist = persistOf<IPersistStorage>(loaded, IID_IPersistStorage);
    EXPECT_EQ(persist->Load(empty), STG_E_FILENOTFOUND);
    persist->Release();
    empty->Release();
    loaded->Release();
    original->Release();
    std::filesystem::remove(path);
}

TEST(MeasurementPersistence, TheWriterPutsEachFieldAtItsOffset) {
    IMeasurement* m = fullMeasurement();
    CMeasurement::from(m)->Location(Bstr(std::string_view("C:/data/run.wkd")).get(), -1,
                                    Bstr(std::string_view("File 0")).get(), Bstr(std::string_view("Meas0")).get(), 20030819);
    const std::vector<std::uint8_t> b = saveToBytes(m);
    const std::uint8_t* p = b.data();
    EXPECT_EQ(le::i32(p + 0), 20071012);
    EXPECT_EQ(le::text(p + 4, 50), std::string("Bearing run 7, with a name longer than its field holds").substr(0, 49));
    EXPECT_EQ(le::text(p + 54, 50), "FRF");
    EXPECT_EQ(le::i16(p + 108), 3);
    EXPECT_EQ(le::text(p + 212, 50), "Arbitrary");
    EXPECT_EQ(le::i32(p + 272), dimensionIndexOf("Hz"));
    EXPECT_EQ(le::i32(p + 328), 5);
    EXPECT_EQ(le::i32(p + 332), -1);
    EXPECT_EQ(le::i32(p + 336), dimensionIndexOf("V"));
    EXPECT_EQ(le::i16(p + 444), 12);
    EXPECT_EQ(le::text(p + 720, 100), kLongUserId.substr(0, 99));
    EXPECT_EQ(le::i32(p + 820), 2 * 3 + 4 + 5 + 8 + 0 + 4 + 10);  // two bytes a pair and the texts
    EXPECT_EQ(le::i32(p + 840), 3);
    EXPECT_EQ(le::i32(p + 856), 4);
    EXPECT_TRUE(std::all_of(p + 860, p + 920, [](std::uint8_t c) { return c == 0; }));
    const std::uint8_t* b2 = p + 920;
    EXPECT_EQ(le::i32(b2 + 0), 20071012);
    EXPECT_EQ(le::i32(b2 + 28), 1);
    EXPECT_EQ(le::text(b2 + 32, 100), "File 0");
    EXPECT_EQ(le::text(b2 + 132, 400), "");  // a complete record keeps no file
    EXPECT_EQ(le::text(b2 + 532, 100), "Meas0");
    EXPECT_EQ(le::i16(b2 + 632), -1);
    EXPECT_EQ(le::i32(b2 + 636), 5);
    EXPECT_EQ(le::i32(p + 1576), 20071012);
    // Y real, Y imaginary, X, then the pairs.
    const std::uint8_t* data = p + 1692;
    EXPECT_EQ(le::f32(data), 1.0f);
    EXPECT_EQ(le::f32(data + 20), 0.5f);
    EXPECT_EQ(le::f32(data + 40), 10.0f);
    const std::string pairs(reinterpret_cast<const char*>(data + 60), b.size() - 1692 - 60);
    EXPECT_EQ(pairs, std::string("Gain\0" "20 dB\0" "Operator\0" "\0" "Note\0" "second run\0", 37));
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
    Variant reArray, imArray;
    reArray.vt = imArray.vt = VT_ARRAY | VT_R4;
    reArray.parray = makeFloatArray(re);
    imArray.parray = makeFloatArray(im);
    ASSERT_EQ(original->YArray(&reArray, 10, &imArray, nullptr), S_OK);
    addParameter(original, "Gain", "6");
    std::vector<std::uint8_t> bytes = saveToBytes(original);
    ASSERT_EQ(le::i32(&bytes[328]), 10);

    IMeasurement* loaded = nullptr;
    ASSERT_EQ(loadBytes(bytes, IID_IPersistStream, &loaded), S_OK);
    EXPECT_EQ(value(loaded, &I::get_Size), 4);
    EXPECT_EQ(value(loaded, &I::get_FileSamples), 10);
    EXPECT_EQ(value(loaded, &I::get_IsUncompleted), -1);
    EXPECT_EQ(floats(loaded, &I::get_YRealArray), (std::vector<float>{0.0f, 1.0f, 2.0f, 3.0f}));
    EXPECT_EQ(floats(loaded, &I::get_YImagArray), (std::vector<float>{0.0f, -1.0f, -2.0f, -3.0f}));
    EXPECT_EQ(parameters(loaded), (std::vector<std::string>{"Gain=6"}));
    loaded->Release();

    // A stream too short for the block falls back to the whole stored record in memory.
    ByteRecord cut(0);
    cut.bytes.assign(bytes.begin(), bytes.begin() + 1692 + 80);
    le::put32(&cut.bytes[328], 2);
    le::put32(&cut.bytes[840], 0);
    le::put32(&cut.bytes[920 + 636], 1000);
    ASSERT_EQ(loadBytes(cut.bytes, IID_IPersistStream, &loaded), S_OK);
    EXPECT_EQ(value(loaded, &I::get_Size), 2);
    EXPECT_EQ(value(loaded, &I::get_FileSamples), 2);
    EXPECT_EQ(value(loaded, &I::get_IsUncompleted), 0);
    EXPECT_EQ(floats(loaded, &I::get_YRealArray), (std::vector<float>{0.0f, 1.0f}));
    loaded->Release();
    original->Release();
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
    EXPECT_EQ(storage->InitNew(nullptr), STG_E_UNIMPLEMENTEDFUNCTION);
    EXPECT_EQ(storage->HandsOffStorage(), STG_E_UNIMPLEMENTEDFUNCTION);
    EXPECT_EQ(storage->Load(nullptr), E_POINTER);
    EXPECT_EQ(standard->Load(nullptr), E_POINTER);
    EXPECT_EQ(standard->Save(nullptr, 0), E_POINTER);
    storage->Release();
    eighth->Release();
    standard->Release();
    void* none = nullptr;
    EXPECT_EQ(m->QueryInterface(IID_IStream, &none), E_NOINTERFACE);
    m->Release();
}

}  // namespace
}  // namespace nvdl::test

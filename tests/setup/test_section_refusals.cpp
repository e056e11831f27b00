// What every section and channel class refuses through put_Property: an enumeration or number given
// as text that does not scan keeps the old value, and a name without a property put raises its
// message. Acquisition, processing and saving have no put_Property at all.
#include "SectionTestSupport.h"

namespace nvdl::test {
namespace {

struct NumericProperty {
    const char16_t* progId;
    const char* property;
};

const NumericProperty kNumericProperties[] = {
    {u"nv_bench.rpm", "StartMode"},          {u"nv_bench.SinRed", "ConditionsMode"},
    {u"nv_bench.SRS", "FreqMax"},            {u"nv_bench.ShockCapture", "RefType"},
    {u"nv_bench.SteppedSine", "Type"},       {u"nv_bench.octave", "Weighting"},
    {u"nv_bench.Impact", "Activated"},       {u"nv_bench.timefilter", "Type"},
    {u"nv_bench.Resampling", "Blocksize"},   {u"nv_bench.PostProcessing", "Location"},
    {u"nv_bench.throughput", "Location"},    {u"nv_bench.input", "Coupling"},
    {u"nv_bench.source", "Mode"},            {u"nv_bench.strain", "Config"},
    {u"nv_bench.transducer", "InputMode"},   {u"nv_bench.Frontend", "Type"},
};

HRESULT putByName(IDispatch* object, const char* name, const char* text) {
    return invoke(object, u"Property", DISPATCH_PROPERTYPUT, {Variant::fromAnsi(name), Variant::fromAnsi(text)});
}

TEST(SectionRefusals, TextThatDoesNotScanKeepsTheValueAndUnknownNamesRaise) {
    for (const NumericProperty& p : kNumericProperties) {
        ComPtr<IDispatch> object = newObject(p.progId);
        ASSERT_TRUE(object) << narrow(p.progId);
        const std::string before = propertyText(object.get(), p.property);
        EXPECT_EQ(putByName(object.get(), p.property, "Manual"), E_INVALIDARG) << narrow(p.progId);
        EXPECT_EQ(propertyText(object.get(), p.property), before) << narrow(p.progId);
        EXPECT_EQ(putByName(object.get(), "NoSuch", "1"), E_FAIL) << narrow(p.progId);
        EXPECT_EQ(pendingDescription(), "NoSuch does not have property put.") << narrow(p.progId);
    }
}

TEST(SectionRefusals, AcquisitionAndProcessingTakeNoPropertyByName) {
    for (const char16_t* progId : {u"nv_bench.acquisition", u"nv_bench.processing"}) {
        ComPtr<IDispatch> object = newObject(progId);
        ASSERT_TRUE(object);
        EXPECT_TRUE(FAILED(putByName(object.get(), "Name", "x"))) << narrow(progId);
    }
}

}  // namespace
}  // namespace nvdl::test

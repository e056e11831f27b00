#include "measurement/FlatRecord.h"

#include <algorithm>

#include "frame/TextCompare.h"
#include "platform/CodePage.h"
#include "platform/LittleEndian.h"

namespace nvdl::flat {

namespace {

using H = Head;
using namespace record;

constexpr Field<H, 1> kHeadFields[] = {
    {text(&H::name, 100), {0}},
    {text(&H::functionType, 50), {100}},
    {i16(&H::responseChannel), {156}},
    {text(&H::response, 50), {158}},
    {i16(&H::referenceChannel), {208}},
    {text(&H::reference, 50), {210}},
    {text(&H::xAxisType, 50), {260}},
    {f32(&H::xStart), {312}},
    {f32(&H::xIncrement), {316}},
    {i32(&H::xDimension), {320}},
    {i32(&H::size), {376}},
    {i32(&H::complex), {380}},
    {i32(&H::yDimension), {384}},
    {text(&H::averagingType, 50), {438}},
    {f32(&H::averagingParameter), {488}},
    {i16(&H::averages), {492}},
    {f32(&H::overlap), {496}},
    {text(&H::windowType, 50), {500}},
    {f32(&H::windowParameter), {552}},
    {f64(&H::measurementTime), {560}},
    {text(&H::testId, 50), {568}},
    {text(&H::functionQualifier, 50), {618}},
    {text(&H::acousticWeighting, 50), {668}},
    {text(&H::environment, 50), {718}},
    {text(&H::userId, 100), {768}},
    {i32(&H::parameterBytes), {868}},
    {f32(&H::order), {872}},
    {f32(&H::rpm), {876}},
    {f32(&H::z), {880}},
    {i32(&H::zDimension), {884}},
    {i32(&H::parameterCount), {888}},
    {f32(&H::bandwidthCorrectionFactor), {892}},
    {i32(&H::power), {896}},
    {i32(&H::overload), {900}},
    {text(&H::storageUnitX, 50), {904}},
    {text(&H::storageUnitY, 50), {954}},
    {f64(&H::rangeMin), {1008}},
    {f64(&H::rangeMax), {1016}},
    {f64(&H::overallMin), {1024}},
    {f64(&H::overallMax), {1032}},
    {f64(&H::mean), {1040}},
    {f64(&H::rms), {1048}},
    {f64(&H::standardDeviation), {1056}},
    {f64(&H::factor), {1064}},
    {f64(&H::unitOffset), {1072}},
    {f32(&H::range), {1080}},
    {text(&H::parameter1, 50), {1088}},
    {text(&H::parameter2, 50), {1138}},
    {i32(&H::usage), {1188}},
    {i32(&H::isUsefullData), {1192}},
    {text(&H::extraName, 50), {1196}},
    {text(&H::extraValue, 50), {1246}},
    {text(&H::loudnessSones, 50), {1296}},
    {text(&H::loudnessPhons, 50), {1346}},
};
constexpr std::span<const Field<H, 1>> kHeadTable(kHeadFields);
static_assert(fitsAndDisjoint(kHeadTable, 0, kHeadSize));

// Puts n values at `at`, zeros where the vector is shorter, and moves `at` behind them.
void putFloats(std::uint8_t* out, std::size_t& at, const std::vector<float>& values, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        le::putF32(out + at, i < values.size() ? values[i] : 0.0f);
        at += sizeof(float);
    }
}

}  // namespace

std::span<const record::Field<Head, 1>> headFields() { return kHeadTable; }

bool decodeHead(const std::uint8_t* bytes, std::size_t available, Head& head) {
    if (!bytes || available < kHeadSize) return false;
    decode(kHeadTable, 0, bytes, head);
    return true;
}

void encodeHead(const Head& head, std::uint8_t* out) { encode(kHeadTable, 0, head, out); }

bool storesX(const Head& head) {
    const std::u16string axis = widen(head.xAxisType);
    return equalsIgnoringCase(axis, u"Arbitrary") || equalsIgnoringCase(axis, u"Octaves");
}

std::vector<std::uint8_t> writeRecord(const Record& r) {
    std::vector<std::uint8_t> text;
    for (const auto& [name, value] : r.parameters) {
        text.insert(text.end(), name.begin(), name.end());
        text.push_back(0);
        text.insert(text.end(), value.begin(), value.end());
        text.push_back(0);
    }
    Head head = r.head;
    head.size = static_cast<std::int32_t>(r.re.size());
    head.complex = r.im.empty() ? 0 : 1;
    head.parameterBytes = static_cast<std::int32_t>(text.size());
    head.parameterCount = static_cast<std::int32_t>(r.parameters.size());
    const bool x = storesX(head);
    const std::size_t n = r.re.size();
    const std::size_t floats = n * (1 + (x ? 1 : 0) + (head.complex ? 1 : 0));
    std::vector<std::uint8_t> out(kHeadSize + text.size() + floats * sizeof(float));
    encodeHead(head, out.data());
    std::copy(text.begin(), text.end(), out.begin() + kHeadSize);
    std::size_t at = kHeadSize + text.size();
    if (x) putFloats(out.data(), at, r.x, n);
    putFloats(out.data(), at, r.re, n);
    if (head.complex) putFloats(out.data(), at, r.im, n);
    return out;
}

bool readRecord(const std::uint8_t* bytes, std::size_t available, Record& r, std::size_t* length) {
    if (!decodeHead(bytes, available, r.head)) return false;
    const Head& h = r.head;
    if (h.size < 0 || h.parameterBytes < 0 || h.parameterCount < 0) return false;
    std::size_t at = kHeadSize;
    if (static_cast<std::size_t>(h.parameterBytes) > available - at) return false;
    const std::uint8_t* text = bytes + at;
    const std::uint8_t* end = text + h.parameterBytes;
    r.parameters.clear();
    for (std::int32_t i = 0; i < h.parameterCount && text < end; ++i) {
        std::string name = le::text(text, static_cast<std::size_t>(end - text));
        text += std::min(name.size() + 1, static_cast<std::size_t>(end - text));
        std::string value = text < end ? le::text(text, static_cast<std::size_t>(end - text)) : std::string();
        text += std::min(value.size() + 1, static_cast<std::size_t>(end - text));
        r.parameters.emplace_back(std::move(name), std::move(value));
    }
    at += static_cast<std::size_t>(h.parameterBytes);
    const std::size_t n = static_cast<std::size_t>(h.size);
    auto readVector = [&](std::vector<float>& into) {
        if (n > (available - at) / sizeof(float)) return false;
        into.resize(n);
        for (std::size_t i = 0; i < n; ++i) into[i] = le::f32(bytes + at + i * sizeof(float));
        at += n * sizeof(float);
        return true;
    };
    r.x.clear();
    r.im.clear();
    if (storesX(h) && !readVector(r.x)) return false;
    if (!readVector(r.re)) return false;
    if (h.complex != 0 && !readVector(r.im)) return false;
    if (length) *length = at;
    return true;
}

}  // namespace nvdl::flat

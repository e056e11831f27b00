#include "setup/Throughput.h"

#include "access/TrcLoader.h"
#include "frame/ClassTable.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.throughput", CLSID_CThroughput, "Sonvara Throughput",
                                 &CThroughput::create}};

// The tag as text in its 50 bytes. The three older tags name the short form of 472 bytes, which ends
// where Interval begins: it carries neither the sequencing nor the location, and Period, although it
// lies inside those bytes, is not taken from it either. The full form adds them and 512 reserved
// bytes. Only these four tags are known; any other is refused.
using R = ThroughputFields;
using namespace record;
constexpr Field<R, 4> kThroughputFields[] = {
    {text(&R::Filename, 400), {50, 50, 50, 50}},
    {i16(&R::AutoIncrement), {450, 450, 450, 450}},
    {f64(&R::Length), {456, 456, 456, 456}},
    {i16(&R::Activated), {464, 464, 464, 464}},
    {i32(&R::Period), {-1, -1, -1, 468}},
    {i32(&R::Interval), {-1, -1, -1, 472}},
    {i32(&R::Location), {-1, -1, -1, 476}},
};
constexpr section::Record<R, 4> kLayout{
    section::TagForm::Text,
    0,
    {{{20000907, 472}, {20021008, 472}, {20031603, 472}, {20060102, 992}}},
    kThroughputFields,
    true};
static_assert(section::wellFormed(kLayout));

}  // namespace

const section::Record<ThroughputFields, 4> CThroughput::kRecord = kLayout;

CThroughput::CThroughput() : CSectionFrame(IID_IThroughput) {}

// The recording setup goes first, then the loader closes its file.
CThroughput::~CThroughput() {
    m_recordingSetup.reset();
    m_loader.reset();
}

access::CTrcLoader& CThroughput::loader() {
    if (!m_loader) m_loader = std::make_unique<access::CTrcLoader>();
    return *m_loader;
}

}  // namespace nvdl

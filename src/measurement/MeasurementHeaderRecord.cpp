#include "measurement/MeasurementHeaderRecord.h"

namespace nvdl {

namespace {

using H = MeasurementHeaderRecord;
using record::f32;
using record::f64;
using record::i16;
using record::i32;
using record::text;

// clang-format off
constexpr HeaderField kHeaderFields[] = {
    //  field                                   19960905 19970312 19970805 19990222 19991006 20021112
    {i32(&H::tag),                              {  -1,      -1,      -1,       0,       0,       0}},
    {text(&H::name, 50),                        {   0,       0,       0,       4,       4,       4}},
    {text(&H::functionType, 50),                {  50,      50,      50,      54,      54,      54}},
    {i16(&H::responseChannel),                  { 104,     104,     104,     108,     108,     108}},
    {text(&H::response, 50),                    { 106,     106,     106,     110,     110,     110}},
    {i16(&H::referenceChannel),                 { 156,     156,     156,     160,     160,     160}},
    {text(&H::reference, 50),                   { 158,     158,     158,     162,     162,     162}},
    {text(&H::xAxisType, 50),                   { 208,     208,     208,     212,     212,     212}},
    {f32(&H::xStart),                           { 260,     260,     260,     264,     264,     264}},
    {f32(&H::xIncrement),                       { 264,     264,     264,     268,     268,     268}},
    {i32(&H::xDimension),                       { 268,     268,     268,     272,     272,     272}},
    {text(&H::storageUnitX, 50),                { 272,     272,     272,     276,     276,     276}},
    {i32(&H::size),                             { 324,     324,     324,     328,     328,     328}},
    {i32(&H::complex),                          { 328,     328,     328,     332,     332,     332}},
    {i32(&H::yDimension),                       { 332,     332,     332,     336,     336,     336}},
    {text(&H::storageUnitY, 50),                { 336,     336,     336,     340,     340,     340}},
    {text(&H::averagingType, 50),               { 386,     386,     386,     390,     390,     390}},
    {f32(&H::averagingParameter),               { 436,     436,     436,     440,     440,     440}},
    {i16(&H::averages),                         { 440,     440,     440,     444,     444,     444}},
    {f32(&H::overlap),                          { 444,     444,     444,     448,     448,     448}},
    {text(&H::windowType, 50),                  { 448,     448,     448,     452,     452,     452}},
    {f32(&H::windowParameter),                  { 500,     500,     500,     504,     504,     504}},
    {f64(&H::measurementTime),                  { 504,     504,     504,     512,     512,     512}},
    {text(&H::testId, 50),                      {  -1,     512,     512,     520,     520,     520}},
    {text(&H::functionQualifier, 50),           {  -1,     562,     562,     570,     570,     570}},
    {text(&H::acousticWeighting, 50),           {  -1,     612,     612,     620,     620,     620}},
    {text(&H::environment, 50),                 {  -1,     662,     662,     670,     670,     670}},
    {text(&H::userId, 100),                     {  -1,     712,     712,     720,     720,     720}},
    {i32(&H::parameterCount),                   {  -1,      -1,     812,     840,     840,     840}},
    {i32(&H::parameterTextLength),              {  -1,      -1,      -1,     820,     820,     820}},
    {f32(&H::order),                            {  -1,      -1,      -1,     824,     824,     824}},
    {f32(&H::rpm),                              {  -1,      -1,      -1,     828,     828,     828}},
    {f32(&H::z),                                {  -1,      -1,      -1,     832,     832,     832}},
    {i32(&H::zDimension),                       {  -1,      -1,      -1,     836,     836,     836}},
    {f32(&H::bandwidthCorrectionFactor),        {  -1,      -1,      -1,      -1,     844,     844}},
    {i32(&H::power),                            {  -1,      -1,      -1,      -1,     848,     848}},
    {i32(&H::overload),                         {  -1,      -1,      -1,      -1,      -1,     852}},
    {i32(&H::usage),                            {  -1,      -1,      -1,      -1,      -1,     856}},
};

using P = MeasurementPagingRecord;
constexpr PagingField kPagingFields[] = {
    {i32(&P::tag),                              {  0}},
    {i32(&P::reservedLong),                     {  4}},
    {i32(&P::isUncompleted),                    {  8}},
    {f32(&P::compressionFactor),                { 12}},
    {i32(&P::isUsefullData),                    { 16}},
    {i32(&P::currentBlock),                     { 20}},
    {i32(&P::blockStartOffset),                 { 24}},
    {i32(&P::firstBlockRead),                   { 28}},
    {text(&P::locationSubStorage, 100),         { 32}},
    {text(&P::locationFile, 400),               {132}},
    {text(&P::locationStream, 100),             {532}},
    {i16(&P::locationInDataStorage),            {632}},
    {i32(&P::fileSamples),                      {636}},
    {i32(&P::longFileFeature),                  {644}},
    {i32(&P::dataOffset),                       {648}},
    {i32(&P::dataLoaded),                       {652}},
};

using O = MeasurementOriginRecord;
constexpr OriginField kOriginFields[] = {
    {i32(&O::tag),                              {  0}},
    {text(&O::softwareRevision, 10),            {  4}},
    {text(&O::workspaceName, 100),              { 14}},
};
// clang-format on

constexpr bool allLayoutsFit() {
    for (std::size_t g = 0; g < kHeaderLayouts; ++g)
        if (!record::fitsAndDisjoint(std::span<const HeaderField>(kHeaderFields), g, kHeaderSize[g])) return false;
    return record::fitsAndDisjoint(std::span<const PagingField>(kPagingFields), 0, kPagingSize) &&
           record::fitsAndDisjoint(std::span<const OriginField>(kOriginFields), 0, kOriginSize);
}
static_assert(allLayoutsFit(), "a field of the stored record leaves its block or overlaps another");

}  // namespace

std::span<const HeaderField> headerFields() { return kHeaderFields; }
std::span<const PagingField> pagingFields() { return kPagingFields; }
std::span<const OriginField> originFields() { return kOriginFields; }

}  // namespace nvdl

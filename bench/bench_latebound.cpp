// Late binding against a direct call: a property get through Invoke, a name look-up through
// GetIDsOfNames, and the same get as a direct virtual call on the interface.
#include <benchmark/benchmark.h>

#include <string>

#include "frame/LateBound.h"
#include "nvdl/IParameter.h"
#include "nvdl/nvdl.h"

namespace {

struct Parameter {
    IDispatch* object = nullptr;
    Parameter() {
        nvdl::CreateObject(u"nv_bench.parameter", &object);
        nvdl::latebound::put(object, u"Modified", nvdl::Variant::fromShort(1));
    }
    ~Parameter() { object->Release(); }
};

void LateBoundGet(benchmark::State& state) {
    Parameter p;
    DISPID id;
    nvdl::latebound::memberId(p.object, u"Modified", &id);
    DISPPARAMS none{};
    VARIANT result;
    VariantInit(&result);
    for (auto _ : state) {
        p.object->Invoke(id, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &result, nullptr, nullptr);
        benchmark::DoNotOptimize(result.iVal);
    }
}
BENCHMARK(LateBoundGet);

void GetIDsOfNames(benchmark::State& state) {
    Parameter p;
    OLECHAR name[] = u"Modified";
    OLECHAR* names[] = {name};
    DISPID id;
    for (auto _ : state) {
        p.object->GetIDsOfNames(IID_NULL, names, 1, 0, &id);
        benchmark::DoNotOptimize(id);
    }
}
BENCHMARK(GetIDsOfNames);

// The first and the last member of the largest interface: the name index makes both cost the same.
void MeasurementNameLookUp(benchmark::State& state, const char16_t* member) {
    IDispatch* m = nullptr;
    nvdl::CreateObject(u"nv_bench.measurement", &m);
    std::u16string text(member);
    OLECHAR* names[] = {text.data()};
    DISPID id;
    for (auto _ : state) {
        m->GetIDsOfNames(IID_NULL, names, 1, 0, &id);
        benchmark::DoNotOptimize(id);
    }
    m->Release();
}
BENCHMARK_CAPTURE(MeasurementNameLookUp, first, u"Name");
BENCHMARK_CAPTURE(MeasurementNameLookUp, last, u"CloneHeaderOnly");

void DirectVirtualGet(benchmark::State& state) {
    Parameter p;
    IParameter* direct = static_cast<IParameter*>(p.object);
    benchmark::DoNotOptimize(direct);
    SHORT modified = 0;
    for (auto _ : state) {
        direct->get_Modified(&modified);
        benchmark::DoNotOptimize(modified);
    }
}
BENCHMARK(DirectVirtualGet);

}  // namespace

BENCHMARK_MAIN();

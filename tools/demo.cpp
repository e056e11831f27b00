// nvdl demo: creates objects by ProgID and drives them late-bound, as a client script would,
// then shows how a failure reaches the client with its message.
#include <cstdio>
#include <string>

#include "commands.h"
#include "frame/LateBound.h"
#include "nvdl/nvdl.h"
#include "platform/CodePage.h"

namespace nvdl::tool {

namespace {

std::string text(const VARIANT& v) {
    Variant copy;
    if (FAILED(VariantChangeType(&copy, &v, 0, VT_BSTR))) return "?";
    return utf16ToUtf8(bstrView(copy.bstrVal));
}

std::string property(IDispatch* object, std::u16string_view name) {
    Variant value;
    HRESULT h = latebound::get(object, name, &value);
    if (FAILED(h)) {
        char buf[32];
        std::snprintf(buf, sizeof buf, "<failed 0x%08X>", static_cast<unsigned>(h));
        return buf;
    }
    return text(value);
}

void reportFailure(const char* what, HRESULT h) {
    std::printf("%s failed with 0x%08X\n", what, static_cast<unsigned>(h));
    if (auto record = takeErrorInfo())
        std::printf("  description: %s\n  source: %s\n", utf16ToUtf8(record->description).c_str(),
                    utf16ToUtf8(record->source).c_str());
}

}  // namespace

int demo(int, char**) {
    IDispatch* parameter = nullptr;
    HRESULT h = CreateObject(u"nv_bench.parameter", &parameter);
    if (FAILED(h)) {
        reportFailure("CreateObject(nv_bench.parameter)", h);
        return 1;
    }
    std::printf("created nv_bench.parameter; live objects: %ld\n", ObjectCount());

    latebound::put(parameter, u"Name", Variant::fromAnsi("Sensitivity"));
    latebound::put(parameter, u"Value", Variant::fromAnsi("10.2 mV/g"));
    std::printf("Name = %s, Value = %s, Modified = %s\n", property(parameter, u"Name").c_str(),
                property(parameter, u"Value").c_str(), property(parameter, u"Modified").c_str());

    DISPID cloneId;
    Variant clone;
    if (SUCCEEDED(latebound::memberId(parameter, u"Clone", &cloneId)) &&
        SUCCEEDED(latebound::call(parameter, cloneId, &clone)) && clone.vt == VT_DISPATCH)
        std::printf("Clone: Name = %s, Value = %s\n", property(clone.pdispVal, u"Name").c_str(),
                    property(clone.pdispVal, u"Value").c_str());

    std::printf("setting a blank name:\n");
    h = latebound::put(parameter, u"Name", Variant::fromAnsi("   "));
    if (FAILED(h)) reportFailure("put Name", h);
    std::printf("Name is still %s\n", property(parameter, u"Name").c_str());

    IDispatch* unknown = nullptr;
    h = CreateObject(u"nv_bench.nosuchclass", &unknown);
    if (FAILED(h)) reportFailure("CreateObject(nv_bench.nosuchclass)", h);

    clone = Variant();
    parameter->Release();
    std::printf("released; live objects: %ld\n", ObjectCount());
    return 0;
}

const CommandEntry demoCommand{"demo", demo, "demo            create objects by ProgID and drive them late-bound"};

}  // namespace nvdl::tool

#include "setup/SaveFunctionList.h"

#include <algorithm>

#include "frame/LateBound.h"
#include "frame/TextChecks.h"
#include "nvdl/ISaveFunction.h"
#include "platform/ComPtr.h"
#include "setup/SaveFunction.h"

namespace nvdl::save_functions {

namespace {

HRESULT append(CObjectCollection& list, IDispatch* item) {
    Variant key, before, after;
    LONG index = 0;
    return list.Add(item, &key, &before, &after, &index);
}

}  // namespace

std::string textOf(const std::vector<std::string>& names) {
    if (names.empty()) return {};
    std::string text;
    for (const std::string& name : names) {
        if (!text.empty()) text += ';';
        text += name;
    }
    text += '\0';
    return text;
}

std::vector<std::string> namesOf(const std::vector<std::uint8_t>& text) {
    const auto end = std::find(text.begin(), text.end(), std::uint8_t{0});
    std::vector<std::string> names;
    std::string name;
    for (auto at = text.begin();; ++at) {
        if (at == end || *at == ';') {
            if (!trimmed(name).empty()) names.push_back(name);
            name.clear();
            if (at == end) break;
        } else {
            name += static_cast<char>(*at);
        }
    }
    return names;
}

std::vector<std::string> namesIn(const CObjectCollection& list) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < list.size(); ++i) {
        Variant name;
        if (SUCCEEDED(latebound::get(list.itemAt(i), u"Name", &name)) && SUCCEEDED(name.changeType(VT_BSTR)))
            names.push_back(bstrToAnsi(name.bstrVal));
    }
    return names;
}

void refill(CObjectCollection& list, const std::vector<std::string>& names) {
    list.Clear();
    for (const std::string& name : names) {
        ComPtr<ISaveFunction> function(new CSaveFunction);
        Bstr text(std::string_view{name});
        if (SUCCEEDED(function->put_Name(text.get()))) append(list, function.get());
    }
}

void copyClones(const CObjectCollection& source, CObjectCollection& target) {
    target.Clear();
    for (std::size_t i = 0; i < source.size(); ++i) {
        ComPtr<ISaveFunction> function;
        if (FAILED(source.itemAt(i)->QueryInterface(IID_ISaveFunction, reinterpret_cast<void**>(function.out()))))
            continue;
        ComPtr<ISaveFunction> copy;
        if (SUCCEEDED(function->Clone(copy.out())) && copy) append(target, copy.get());
    }
}

}  // namespace nvdl::save_functions

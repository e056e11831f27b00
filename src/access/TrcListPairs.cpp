// The name and value lists of a setup and of a recording: the setup's parameters, and the saving
// section's two lists of functions to keep. An item of either kind travels as its name and its text
// value, as one parameter record of the file.
#include <memory>

#include "access/SetupAccess.h"
#include "access/TrcSetupPairs.h"
#include "frame/LateBound.h"
#include "measurement/Parameter.h"
#include "nvdl/Variant.h"
#include "setup/SaveFunction.h"
#include "setup/Saving.h"

namespace nvdl::access {
namespace {

using trc::CTrcParametersSection;

bool textOf(IDispatch* item, std::u16string_view member, std::string& text) {
    Variant value;
    if (FAILED(latebound::get(item, member, &value)) || FAILED(value.changeType(VT_BSTR))) return false;
    text = bstrToAnsi(value.bstrVal);
    return true;
}

bool listToFile(const CObjectCollection& items, CTrcParametersSection& to) {
    to.RemoveAll();
    for (std::size_t i = 0; i < items.size(); ++i) {
        std::string name, value;
        if (!textOf(items.itemAt(i), u"Name", name) || !textOf(items.itemAt(i), u"Value", value)) return false;
        auto parameter = std::make_unique<trc::CTrcParameterSection>();
        parameter->SetName(name.c_str());
        parameter->SetValue(value.c_str());
        if (!to.Add(std::move(parameter))) return false;
    }
    return true;
}

// The collection emptied and given a new item of `create`'s class per record of the list.
bool listToObjects(CTrcParametersSection& from, CObjectCollection& items, IDispatch* (*create)()) {
    if (FAILED(items.Clear())) return false;
    for (long i = 0; i < from.GetCount(); ++i) {
        const trc::CTrcParameterSection& record = *from.GetItem(i);
        ComPtr<IDispatch> item(create());
        if (!item || FAILED(latebound::put(item.get(), u"Name", Variant::fromAnsi(record.GetName()))) ||
            FAILED(latebound::put(item.get(), u"Value", Variant::fromAnsi(record.GetValue()))) ||
            FAILED(append(items, item.get())))
            return false;
    }
    return true;
}

// The three lists of a setup: where the collection stands and which list of the file holds it.
struct ListPlace {
    CObjectCollection* (*collection)(CSetup& setup);
    CTrcParametersSection& (*list)(trc::CTrcSetupSection& setup);
    IDispatch* (*create)();
};

CSaving* savingOf(CSetup& setup) { return sectionOf<CSaving>(setup, &CSetup::get_Saving); }

const ListPlace kLists[] = {
    {[](CSetup& s) { return collectionOf(s, &CSetup::get_Parameters); },
     [](trc::CTrcSetupSection& s) -> CTrcParametersSection& { return s.GetParameters(); }, &CParameter::create},
    {[](CSetup& s) {
         CSaving* saving = savingOf(s);
         return saving ? collectionOf(*saving, &CSaving::get_MeasFunctions) : nullptr;
     },
     [](trc::CTrcSetupSection& s) -> CTrcParametersSection& { return s.GetSaving().GetMeasFunctions(); },
     &CSaveFunction::create},
    {[](CSetup& s) {
         CSaving* saving = savingOf(s);
         return saving ? collectionOf(*saving, &CSaving::get_TimeHistoryFunctions) : nullptr;
     },
     [](trc::CTrcSetupSection& s) -> CTrcParametersSection& { return s.GetSaving().GetTimeHistoryFunctions(); },
     &CSaveFunction::create},
};

}  // namespace

int applyLists(CSetup& from, trc::CTrcSetupSection& to) {
    for (const ListPlace& place : kLists) {
        CObjectCollection* items = place.collection(from);
        if (!items || !listToFile(*items, place.list(to))) return 0;
    }
    return 1;
}

int buildLists(trc::CTrcSetupSection& from, CSetup& to) {
    for (const ListPlace& place : kLists) {
        CObjectCollection* items = place.collection(to);
        if (!items || !listToObjects(place.list(from), *items, place.create)) return 0;
    }
    return 1;
}

}  // namespace nvdl::access

#include "project/UnitClient.h"

#include <cstdlib>
#include <string_view>

#include "frame/LateBound.h"
#include "nvdl/Bstr.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"
#include "nvdl/ErrorInfo.h"
#include "platform/Registry.h"
#include "nvdl/Variant.h"
#include "project/units/UnitService.h"

namespace nvdl {

namespace {

IUnitService* g_unitService = nullptr;  // the module's one reference

// A system where the unit service is not running and cannot be started: "UnitService"="0" under
// the settings key, or NVDL_UNIT_SERVICE=0 in the environment, which overrides the setting either
// way. Both are looked at on every use, as the running service would be.
bool serviceSwitchedOff() {
    if (const char* override = std::getenv("NVDL_UNIT_SERVICE")) return std::string_view(override) == "0";
    std::optional<std::string> setting = registry::readSetting("UnitService");
    return setting && *setting == "0";
}

std::string textOf(BSTR text) {
    std::string result = bstrToAnsi(text);
    SysFreeString(text);
    return result;
}

std::string unitsFileSetting() {
    if (std::optional<std::string> user = registry::readSetting("UnitsFile"); user && !user->empty()) return *user;
    std::optional<std::string> machine = registry::readString(registry::Hive::LocalMachine, registry::kSettingsKey, "UnitsFile");
    return machine ? *machine : std::string();
}

}  // namespace

IUnitService* GetUnitService() {
    if (!g_unitService || serviceSwitchedOff()) return nullptr;
    g_unitService->AddRef();
    return g_unitService;
}

IUnitService* GetOrCreateUnitService() {
    if (serviceSwitchedOff()) return nullptr;
    if (!g_unitService) {
        g_unitService = units::CUnitService::create();
        if (std::string file = unitsFileSetting(); !file.empty()) {
            Bstr path{std::string_view(file)};
            // A file that cannot be read leaves the shipped table; the helpers raise no message.
            if (FAILED(g_unitService->Load(path.get()))) clearErrorInfo();
        }
    }
    g_unitService->AddRef();
    return g_unitService;
}

void ReleaseUnitService() {
    if (g_unitService) g_unitService->Release();
    g_unitService = nullptr;
}

IDimensions* GetDimensions() {
    ComPtr<IUnitService> service(GetOrCreateUnitService());
    if (!service) return nullptr;
    Variant value;
    if (FAILED(latebound::get(service.get(), u"Dimensions", &value)) || value.vt != VT_DISPATCH) return nullptr;
    return ComPtr<IDimensions>::query(value.pdispVal).release();
}

IUnits* GetUnits(IDispatch* dimension) {
    if (!dimension || serviceSwitchedOff()) return nullptr;
    Variant value;
    if (FAILED(latebound::get(dimension, u"Units", &value)) || value.vt != VT_DISPATCH) return nullptr;
    return ComPtr<IUnits>::query(value.pdispVal).release();
}

IDimension* CreateDimension(const VARIANT& dimension, SHORT exponent, std::string_view unit, double factor) {
    ComPtr<IUnitService> service(GetOrCreateUnitService());
    if (!service) return nullptr;
    IDimension* made = nullptr;
    if (FAILED(service->NewDimension(&made)) || !made) return nullptr;
    ComPtr<IDimension> result(made);
    Bstr unitText(unit);
    if (FAILED(result->put_Dimension(dimension)) || FAILED(result->put_Exponent(exponent)) ||
        FAILED(result->put_Unit(unitText.get())) || FAILED(result->put_Factor(factor)))
        return nullptr;
    return result.release();
}

IDimension* DimensionFromText(std::string_view text, bool allowNewDimension) {
    if (text.empty()) return nullptr;
    ComPtr<IUnitService> service(GetOrCreateUnitService());
    if (!service) return nullptr;
    Bstr name(text);
    IUnit* unit = nullptr;
    if (SUCCEEDED(service->FindUnit(name.get(), &unit)) && unit) {
        ComPtr<IUnit> held(unit);
        IDimension* dimension = nullptr;
        if (SUCCEEDED(unit->get_Dimension(&dimension)) && dimension) return dimension;
    }
    if (ComPtr<IDimensions> dimensions(GetDimensions()); dimensions) {
        IDimension* dimension = nullptr;
        if (SUCCEEDED(dimensions->get_Item(Variant::fromAnsi(text), &dimension)) && dimension) return dimension;
    }
    if (!allowNewDimension) return nullptr;
    return CreateDimension(Variant(), 1, text, 1.0);
}

std::string DimensionName(IDispatch* dimension) {
    auto d = ComPtr<IDimension>::query(dimension);
    BSTR name = nullptr;
    if (!d || FAILED(d->get_Name(&name))) return {};
    return textOf(name);
}

LONG DimensionIndex(IDispatch* dimension) {
    auto d = ComPtr<IDimension>::query(dimension);
    LONG index = -1;
    if (!d || FAILED(d->get_Index(&index))) return -1;
    return index;
}

bool GetDimensionExponents(IDispatch* dimension, DimensionExponents& exponents) {
    exponents.fill(0);
    auto d = ComPtr<IDimension>::query(dimension);
    if (!d) return false;
    for (SHORT i = 0; i < kBaseExponentCount; ++i)
        if (FAILED(d->get_BaseExponent(static_cast<SHORT>(i + 1), &exponents[i]))) {
            exponents.fill(0);
            return false;
        }
    return true;
}

bool DimensionIsValid(IDispatch* dimension) {
    auto d = ComPtr<IDimension>::query(dimension);
    SHORT valid = VARIANT_FALSE;
    return d && SUCCEEDED(d->get_IsValid(&valid)) && valid != VARIANT_FALSE;
}

bool DimensionIsUnknown(IDispatch* dimension) {
    auto d = ComPtr<IDimension>::query(dimension);
    SHORT unknown = VARIANT_TRUE;
    return !d || FAILED(d->get_IsUnknown(&unknown)) || unknown != VARIANT_FALSE;
}

std::string DimensionDefaultUnitName(IDispatch* dimension) {
    auto d = ComPtr<IDimension>::query(dimension);
    IUnit* unit = nullptr;
    if (!d || FAILED(d->get_DefaultUnit(&unit)) || !unit) return {};
    ComPtr<IUnit> held(unit);
    return UnitName(unit);
}

IDimension* DimensionAtIndex(LONG index) {
    ComPtr<IDimensions> dimensions(GetDimensions());
    IDimension* dimension = nullptr;
    if (!dimensions || FAILED(dimensions->get_Item(Variant::fromLong(index), &dimension))) return nullptr;
    return dimension;
}

LONG DimensionTableIndex(IDispatch* dimension) {
    std::string name = DimensionName(dimension);
    if (name.empty()) return 0;
    ComPtr<IDimensions> dimensions(GetDimensions());
    IDimension* row = nullptr;
    if (!dimensions || FAILED(dimensions->get_Item(Variant::fromAnsi(name), &row)) || !row) return 0;
    ComPtr<IDimension> held(row);
    LONG index = 0;
    return SUCCEEDED(row->get_Index(&index)) && index >= 0 ? index : 0;
}

IDimension* DimensionWithExponents(const DimensionExponents& e) {
    ComPtr<IDimensions> dimensions(GetDimensions());
    IDimension* dimension = nullptr;
    if (!dimensions ||
        FAILED(dimensions->FromExponents(e[0], e[1], e[2], e[3], e[4], e[5], e[6], e[7], e[8], e[9], &dimension)))
        return nullptr;
    return dimension;
}

IDimension* SquareRootDimension(IDispatch* dimension) {
    auto d = ComPtr<IDimension>::query(dimension);
    IDimension* root = nullptr;
    if (!d || serviceSwitchedOff() || FAILED(d->SquareRoot(&root))) return nullptr;
    return root;
}

IUnit* UnitOfDimension(IDispatch* dimension, std::string_view unitName) {
    ComPtr<IUnits> units(GetUnits(dimension));
    IUnit* unit = nullptr;
    if (!units || FAILED(units->get_Item(Variant::fromAnsi(unitName), &unit))) return nullptr;
    return unit;
}

std::string UnitName(IDispatch* unit) {
    auto u = ComPtr<IUnit>::query(unit);
    BSTR name = nullptr;
    if (!u || FAILED(u->get_Name(&name))) return {};
    return textOf(name);
}

bool GetUnitScaleAndOffset(IDispatch* unit, double& scale, double& offset) {
    scale = 1.0;
    offset = 0.0;
    auto u = ComPtr<IUnit>::query(unit);
    double s = 1.0, o = 0.0;
    if (!u || FAILED(u->get_Factor(&s)) || FAILED(u->get_Offset(&o))) return false;
    scale = s;
    offset = o;
    return true;
}

IDimension* UnitDimension(IDispatch* unit) {
    auto u = ComPtr<IUnit>::query(unit);
    IDimension* dimension = nullptr;
    if (!u || FAILED(u->get_Dimension(&dimension))) return nullptr;
    return dimension;
}

}  // namespace nvdl

#include "project/UnitClient.h"

#include <cstdlib>
#include <string_view>

#include "frame/LateBound.h"
#include "nvdl/Bstr.h"
#include "platform/CodePage.h"
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

template <class Interface>
Interface* queryInterface(IUnknown* object) {
    Interface* result = nullptr;
    if (!object || FAILED(object->QueryInterface(Interface::iid, reinterpret_cast<void**>(&result)))) return nullptr;
    return result;
}

// Holds one reference for the length of a helper.
template <class Interface>
class Held {
public:
    explicit Held(Interface* p) : m_p(p) {}
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    ~Held() {
        if (m_p) m_p->Release();
    }
    Interface* operator->() const { return m_p; }
    explicit operator bool() const { return m_p != nullptr; }
    Interface* get() const { return m_p; }
    Interface* release() {
        Interface* p = m_p;
        m_p = nullptr;
        return p;
    }

private:
    Interface* m_p;
};

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

namespace {

// The module's reference goes when the module is let go of.
struct ReleasedAtDetach {
    ~ReleasedAtDetach() { ReleaseUnitService(); }
} g_releasedAtDetach;

}  // namespace

IDimensions* GetDimensions() {
    Held<IUnitService> service(GetOrCreateUnitService());
    if (!service) return nullptr;
    Variant value;
    if (FAILED(latebound::get(service.get(), u"Dimensions", &value)) || value.vt != VT_DISPATCH) return nullptr;
    return queryInterface<IDimensions>(value.pdispVal);
}

IUnits* GetUnits(IDispatch* dimension) {
    if (!dimension || serviceSwitchedOff()) return nullptr;
    Variant value;
    if (FAILED(latebound::get(dimension, u"Units", &value)) || value.vt != VT_DISPATCH) return nullptr;
    return queryInterface<IUnits>(value.pdispVal);
}

IDimension* CreateDimension(const VARIANT& dimension, SHORT exponent, std::string_view unit, double factor) {
    Held<IUnitService> service(GetOrCreateUnitService());
    if (!service) return nullptr;
    IDimension* made = nullptr;
    if (FAILED(service->NewDimension(&made)) || !made) return nullptr;
    Held<IDimension> result(made);
    Bstr unitText(unit);
    if (FAILED(result->put_Dimension(dimension)) || FAILED(result->put_Exponent(exponent)) ||
        FAILED(result->put_Unit(unitText.get())) || FAILED(result->put_Factor(factor)))
        return nullptr;
    return result.release();
}

IDimension* DimensionFromText(std::string_view text, bool allowNewDimension) {
    if (text.empty()) return nullptr;
    Held<IUnitService> service(GetOrCreateUnitService());
    if (!service) return nullptr;
    Bstr name(text);
    IUnit* unit = nullptr;
    if (SUCCEEDED(service->FindUnit(name.get(), &unit)) && unit) {
        Held<IUnit> held(unit);
        IDimension* dimension = nullptr;
        if (SUCCEEDED(unit->get_Dimension(&dimension)) && dimension) return dimension;
    }
    if (Held<IDimensions> dimensions(GetDimensions()); dimensions) {
        IDimension* dimension = nullptr;
        if (SUCCEEDED(dimensions->get_Item(Variant::fromAnsi(text), &dimension)) && dimension) return dimension;
    }
    if (!allowNewDimension) return nullptr;
    return CreateDimension(Variant(), 1, text, 1.0);
}

std::string DimensionName(IDispatch* dimension) {
    Held<IDimension> d(queryInterface<IDimension>(dimension));
    BSTR name = nullptr;
    if (!d || FAILED(d->get_Name(&name))) return {};
    return textOf(name);
}

LONG DimensionIndex(IDispatch* dimension) {
    Held<IDimension> d(queryInterface<IDimension>(dimension));
    LONG index = -1;
    if (!d || FAILED(d->get_Index(&index))) return -1;
    return index;
}

bool GetDimensionExponents(IDispatch* dimension, DimensionExponents& exponents) {
    exponents.fill(0);
    Held<IDimension> d(queryInterface<IDimension>(dimension));
    if (!d) return false;
    for (SHORT i = 0; i < kBaseExponentCount; ++i)
        if (FAILED(d->get_BaseExponent(static_cast<SHORT>(i + 1), &exponents[i]))) {
            exponents.fill(0);
            return false;
        }
    return true;
}

bool DimensionIsValid(IDispatch* dimension) {
    Held<IDimension> d(queryInterface<IDimension>(dimension));
    SHORT valid = VARIANT_FALSE;
    return d && SUCCEEDED(d->get_IsValid(&valid)) && valid != VARIANT_FALSE;
}

bool DimensionIsUnknown(IDispatch* dimension) {
    Held<IDimension> d(queryInterface<IDimension>(dimension));
    SHORT unknown = VARIANT_TRUE;
    return !d || FAILED(d->get_IsUnknown(&unknown)) || unknown != VARIANT_FALSE;
}

std::string DimensionDefaultUnitName(IDispatch* dimension) {
    Held<IDimension> d(queryInterface<IDimension>(dimension));
    IUnit* unit = nullptr;
    if (!d || FAILED(d->get_DefaultUnit(&unit)) || !unit) return {};
    Held<IUnit> held(unit);
    return UnitName(unit);
}

IDimension* DimensionAtIndex(LONG index) {
    Held<IDimensions> dimensions(GetDimensions());
    IDimension* dimension = nullptr;
    if (!dimensions || FAILED(dimensions->get_Item(Variant::fromLong(index), &dimension))) return nullptr;
    return dimension;
}

LONG DimensionTableIndex(IDispatch* dimension) {
    std::string name = DimensionName(dimension);
    if (name.empty()) return 0;
    Held<IDimensions> dimensions(GetDimensions());
    IDimension* row = nullptr;
    if (!dimensions || FAILED(dimensions->get_Item(Variant::fromAnsi(name), &row)) || !row) return 0;
    Held<IDimension> held(row);
    LONG index = 0;
    return SUCCEEDED(row->get_Index(&index)) && index >= 0 ? index : 0;
}

IDimension* DimensionWithExponents(const DimensionExponents& e) {
    Held<IDimensions> dimensions(GetDimensions());
    IDimension* dimension = nullptr;
    if (!dimensions ||
        FAILED(dimensions->FromExponents(e[0], e[1], e[2], e[3], e[4], e[5], e[6], e[7], e[8], e[9], &dimension)))
        return nullptr;
    return dimension;
}

IDimension* SquareRootDimension(IDispatch* dimension) {
    Held<IDimension> d(queryInterface<IDimension>(dimension));
    IDimension* root = nullptr;
    if (!d || serviceSwitchedOff() || FAILED(d->SquareRoot(&root))) return nullptr;
    return root;
}

IUnit* UnitOfDimension(IDispatch* dimension, std::string_view unitName) {
    Held<IUnits> units(GetUnits(dimension));
    IUnit* unit = nullptr;
    if (!units || FAILED(units->get_Item(Variant::fromAnsi(unitName), &unit))) return nullptr;
    return unit;
}

std::string UnitName(IDispatch* unit) {
    Held<IUnit> u(queryInterface<IUnit>(unit));
    BSTR name = nullptr;
    if (!u || FAILED(u->get_Name(&name))) return {};
    return textOf(name);
}

bool GetUnitScaleAndOffset(IDispatch* unit, double& scale, double& offset) {
    scale = 1.0;
    offset = 0.0;
    Held<IUnit> u(queryInterface<IUnit>(unit));
    double s = 1.0, o = 0.0;
    if (!u || FAILED(u->get_Factor(&s)) || FAILED(u->get_Offset(&o))) return false;
    scale = s;
    offset = o;
    return true;
}

IDimension* UnitDimension(IDispatch* unit) {
    Held<IUnit> u(queryInterface<IUnit>(unit));
    IDimension* dimension = nullptr;
    if (!u || FAILED(u->get_Dimension(&dimension))) return nullptr;
    return dimension;
}

}  // namespace nvdl

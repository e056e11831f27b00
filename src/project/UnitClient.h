// The client side of the unit service: finding the service and reading its dimensions and units.
//
// "No service" is a normal state: when the setting `UnitService` under the settings key is "0" (or
// the environment says NVDL_UNIT_SERVICE=0, which overrides the setting) the service is switched
// off, and then every helper here answers nothing (null, empty text, -1 or
// false as told below) without raising a message. Callers treat it as a measurement without unit
// objects.
//
// Every helper that answers an interface pointer gives one counted reference (the caller releases
// it) or null. Every helper accepts null objects and then answers nothing. Texts are 8-bit in the
// system code page. The service's objects belong to the service, not to the client: they do not
// count as live objects of this server, and the module lets go of the service when it is unloaded.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "nvdl/IUnitService.h"

namespace nvdl {

using DimensionExponents = std::array<SHORT, kBaseExponentCount>;

// The running service, or null when there is none or it is switched off.
IUnitService* GetUnitService();
// The running service, else a new one, which is at once told its units file: the setting
// `UnitsFile` of the current user (built in: the file shipped with the library), else the value of
// the machine; an empty or unreadable file leaves it with the shipped file. The module keeps one
// reference; the file is read only when the service is made.
IUnitService* GetOrCreateUnitService();
// Drops the module's reference (module detach, frame/ServerEntry.cpp; tests that change the units file).
void ReleaseUnitService();
// The service's dimensions collection.
IDimensions* GetDimensions();
// The units collection of a dimension object.
IUnits* GetUnits(IDispatch* dimension);
// A new dimension object with its four properties set in this order: Dimension (a dimension
// object, a dimension name, or empty), Exponent, Unit, Factor. Null when one of them is refused.
IDimension* CreateDimension(const VARIANT& dimension, SHORT exponent, std::string_view unit, double factor);

// --- For the measurement ---

// A dimension for a text: first the dimension of the unit of that name (exact, then ignoring
// case), then the dimension of that name (ignoring case); with `allowNewDimension` (the Y axis)
// last a dimension built from the text alone: CreateDimension(empty, 1, text, 1.0). That one is
// valid when the text is an expression over the table's units ("m/s^3", "N*m"), and is otherwise
// unknown and not valid, named by the text. Null for an empty text.
IDimension* DimensionFromText(std::string_view text, bool allowNewDimension);
// The dimension's name; empty for null.
std::string DimensionName(IDispatch* dimension);
// The dimension's own Index: its position in the table, -1 when it is not a row of the table or null.
LONG DimensionIndex(IDispatch* dimension);
// The ten base exponents; false (and zeros) for null.
bool GetDimensionExponents(IDispatch* dimension, DimensionExponents& exponents);
bool DimensionIsValid(IDispatch* dimension);  // false for null
// True also for null: a missing dimension is treated as an unknown one.
bool DimensionIsUnknown(IDispatch* dimension);
// The name of the dimension's default unit; empty when it has none or for null.
std::string DimensionDefaultUnitName(IDispatch* dimension);
// The table's dimension at a position (the dimension index of measurement files); null when the
// position is outside the table.
IDimension* DimensionAtIndex(LONG index);
// The index a measurement file keeps for a dimension: the position of the dimension's name in the
// table, 0 when the table has no such name (or null, or no service).
LONG DimensionTableIndex(IDispatch* dimension);
// The table's dimension with these exponents, else a new unnamed one (named by its base units).
// Products and quotients of dimensions are made by adding or subtracting exponents and asking here.
IDimension* DimensionWithExponents(const DimensionExponents& exponents);
// The dimension whose square this one is (each exponent halved by integer division); an unknown
// dimension gives itself.
IDimension* SquareRootDimension(IDispatch* dimension);
// A unit of the dimension by name (exact, then ignoring case); null when it has none of that name.
IUnit* UnitOfDimension(IDispatch* dimension, std::string_view unitName);
// A unit's name; empty for null.
std::string UnitName(IDispatch* unit);
// A unit's scale (its Factor) and offset; false, with scale 1 and offset 0, for null.
bool GetUnitScaleAndOffset(IDispatch* unit, double& scale, double& offset);
// The dimension a unit belongs to.
IDimension* UnitDimension(IDispatch* unit);

}  // namespace nvdl

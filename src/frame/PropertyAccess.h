// Property access by name and the walk over an interface's scalar properties, shared by every
// class that offers get_Property, put_Property, PropertiesCount and PropertyName.
#pragma once


#include "nvdl/Dispatch.h"

namespace nvdl {

// The value of the named property as text (locale 0). A name that does not exist fails with the
// description's code.
HRESULT getPropertyText(IDispatch* self, ITypeInfo* info, BSTR name, BSTR* value);

enum class PutPropertyOutcome { Done, NoSuchMember };
// Sets the named property from a text, converted by the type its put declares. A name with no
// put leaves `outcome` at NoSuchMember and answers S_OK: the caller decides what that means.
HRESULT putPropertyText(IDispatch* self, ITypeInfo* info, BSTR name, BSTR value, PutPropertyOutcome& outcome);

// The walk: property gets with no parameters, not hidden, of a scalar type.
bool isWalkedProperty(const FUNCDESC& f);
HRESULT propertiesCount(ITypeInfo* info, LONG* count);
// Outside 0 to count minus 1 the answer is S_OK and the output is left untouched.
HRESULT propertyName(ITypeInfo* info, LONG index, BSTR* name);
// The value, as text, of the property at a place of the walk; E_INVALIDARG outside it.
HRESULT propertyTextByIndex(IDispatch* self, ITypeInfo* info, LONG index, BSTR* value);

}  // namespace nvdl

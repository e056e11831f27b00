// Calls on objects whose class is not known here, by member name, as a client would make them.
#pragma once

#include <span>
#include <string_view>

#include "nvdl/Dispatch.h"

namespace nvdl::latebound {

// The member number of a name, or a failure if the object has no such member.
HRESULT memberId(IDispatch* object, std::u16string_view name, DISPID* id);
HRESULT get(IDispatch* object, DISPID id, VARIANT* value);
HRESULT get(IDispatch* object, std::u16string_view name, VARIANT* value);
// Property put; an object value goes by reference (DISPATCH_PROPERTYPUTREF) when byReference is set.
HRESULT put(IDispatch* object, DISPID id, const VARIANT& value, bool byReference = false);
HRESULT put(IDispatch* object, std::u16string_view name, const VARIANT& value, bool byReference = false);
HRESULT call(IDispatch* object, DISPID id, VARIANT* result);
// A method with arguments, given first to last.
HRESULT call(IDispatch* object, std::u16string_view name, std::span<const VARIANT> args, VARIANT* result);

}  // namespace nvdl::latebound

namespace nvdl {

// Passes a set Modified flag upwards: the parent is asked for each interface in turn, and the
// first one it answers to has its Modified property put through its own IDispatch, so that a parent
// of any server receives it (the thread's error record stays). A parent of no listed kind ends the climb.
HRESULT putModifiedThroughFirst(IDispatch* parent, std::span<const IID> kinds, SHORT flag);

}  // namespace nvdl

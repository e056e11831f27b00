// The members that the frame gives every class: the Modified climb to parents of any server, a dead
// parent, the exception border of a call, and property values by their place in the walk.
#include <gtest/gtest.h>

#include <stdexcept>

#include "ForeignParent.h"
#include "TestHelpers.h"
#include "TestObjects.h"
#include "measurement/Measurement.h"
#include "measurement/Parameter.h"
#include "nvdl/nvdl.h"
#include "platform/ComPtr.h"

namespace nvdl::test {
namespace {

ComPtr<IMeasurement> newMeasurement() {
    ComPtr<IDispatch> object;
    EXPECT_EQ(CreateObject(u"nv_bench.measurement", object.out()), S_OK);
    return ComPtr<IMeasurement>::query(object.get());
}

TEST(FrameMembers, ModifiedClimbsToAParentOfAnotherServerAndOnlyWhenSet) {
    ForeignParent workspace(IID_IWorkspace);
    ComPtr<IMeasurement> m = newMeasurement();
    ASSERT_EQ(m->put_Parent(&workspace), S_OK);
    ASSERT_EQ(m->put_Modified(0), S_OK);
    EXPECT_EQ(workspace.puts, 0);
    ASSERT_EQ(m->put_Modified(-1), S_OK);
    EXPECT_EQ(workspace.puts, 1);
    EXPECT_EQ(workspace.modified, -1);
    // Late-bound setters mark the measurement, which passes it on.
    ASSERT_EQ(putText(m.get(), u"Response", "acc"), S_OK);
    EXPECT_EQ(workspace.puts, 2);

    // A parameter climbs to the first of measurement, mode, setup and saving that its parent is.
    ForeignParent setup(IID_ISetup);
    ComPtr<IParameter> p(new CParameter);
    ASSERT_EQ(p->put_Parent(&setup), S_OK);
    ASSERT_EQ(putText(p.get(), u"Value", "3"), S_OK);
    EXPECT_EQ(setup.puts, 1);

    // A parent of no listed kind ends the climb.
    ForeignParent stranger(IID_ITestItem);
    ComPtr<IParameter> q(new CParameter);
    ASSERT_EQ(q->put_Parent(&stranger), S_OK);
    ASSERT_EQ(q->put_Modified(1), S_OK);
    EXPECT_EQ(stranger.puts, 0);
}

TEST(FrameMembers, ADeadParentIsClearedAndAnsweredAsNone) {
    ComPtr<IMeasurement> m = newMeasurement();
    ComPtr<IParameter> p(new CParameter);
    {
        ComPtr<IDispatch> owner(CTestOwner::create(CLSID_CParameter)->dispatch());
        ASSERT_EQ(m->put_Parent(owner.get()), S_OK);
        ASSERT_EQ(p->put_Parent(owner.get()), S_OK);
    }
    // The measurement validates its parent and gives none; the parameter answers E_POINTER once
    // and none after that.
    ComPtr<IDispatch> parent;
    EXPECT_EQ(m->get_Parent(parent.out()), S_OK);
    EXPECT_FALSE(parent);
    EXPECT_EQ(m->put_Modified(1), S_OK);
    EXPECT_EQ(p->get_Parent(parent.out()), E_POINTER);
    EXPECT_EQ(p->get_Parent(parent.out()), S_OK);
    EXPECT_FALSE(parent);
    EXPECT_EQ(p->put_Modified(1), S_OK);
}

#define NVDL_ITHROWING_MEMBERS(M)            \
    M(get, Failure, (BSTR* v))               \
    M(get, Exhausted, (LONG* v))             \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))
inline constexpr IID IID_IThrowing{0x1b2c3d4e, 0x0009, 0x4000, {0x80, 0, 0, 0, 0, 0, 0, 9}};
NVDL_INTERFACE(IThrowing, NVDL_ITHROWING_MEMBERS);

class CThrowing final : public CObjectFrame<CThrowing, IThrowing> {
public:
    CThrowing() : CObjectFrame(IID_IThrowing) {}
    HRESULT get_Failure(BSTR*) override { throw std::runtime_error("the sensor table is damaged"); }
    HRESULT get_Exhausted(LONG*) override { throw std::bad_alloc(); }
};

TEST(FrameMembers, AnExceptionComesBackAsAStatusWithItsDescription) {
    ComPtr<IDispatch> object(static_cast<IThrowing*>(new CThrowing));
    Variant value;
    EXPECT_EQ(latebound::get(object.get(), u"Failure", &value), E_FAIL);
    EXPECT_EQ(pendingDescription(), "the sensor table is damaged");
    EXPECT_EQ(latebound::get(object.get(), u"Exhausted", &value), E_OUTOFMEMORY);
    EXPECT_EQ(pendingDescription(), "");
}

TEST(FrameMembers, PropertyValueByItsPlaceInTheWalk) {
    ComPtr<CTestItem> item(CTestItem::create());
    ASSERT_EQ(putText(item->dispatch(), u"Count", "42"), S_OK);
    LONG count = 0;
    ASSERT_EQ(item->get_PropertiesCount(&count), S_OK);
    bool found = false;
    for (LONG i = 0; i < count; ++i) {
        Bstr name, value;
        ASSERT_EQ(item->get_PropertyName(i, name.out()), S_OK);
        ASSERT_EQ(item->GetPropertyByIndex(i, value.out()), S_OK);
        if (narrow(name.view()) == "Count") {
            EXPECT_EQ(narrow(value.view()), "42");
            found = true;
        }
    }
    EXPECT_TRUE(found);
    Bstr outside;
    EXPECT_EQ(item->GetPropertyByIndex(count, outside.out()), E_INVALIDARG);
    EXPECT_EQ(item->GetPropertyByIndex(-1, outside.out()), E_INVALIDARG);
}

}  // namespace
}  // namespace nvdl::test

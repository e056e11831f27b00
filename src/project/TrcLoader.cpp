#include "project/TrcLoader.h"

#include "frame/ClassTable.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.io_newtrc", CLSID_CTrcLoader, "Sonvara TRC Loader", &CTrcLoader::create}};

}  // namespace

CTrcLoader::CTrcLoader() : CObjectFrame(IID_IWorkspaceLoader) {}

IDispatch* CTrcLoader::create() { return (new CTrcLoader)->dispatch(); }

HRESULT CTrcLoader::Load(BSTR, IDispatch*) { return E_NOTIMPL; }

HRESULT CTrcLoader::Save(BSTR, IDispatch*) { return E_NOTIMPL; }

}  // namespace nvdl

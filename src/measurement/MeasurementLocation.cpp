// CMeasurement: where the samples live (the backing stream), the overview picture, and the names
// of the workspace and shared link that a measurement carries.
#include "frame/LateBound.h"
#include "frame/TextChecks.h"
#include "measurement/Measurement.h"
#include "measurement/MeasurementStreamFormat.h"
#include "project/Workspace.h"

namespace nvdl {

HRESULT CMeasurement::Location(BSTR file, SHORT inDataStorage, BSTR subStorage, BSTR stream, LONG version) {
    if (!file || !subStorage || !stream) return E_FAIL;
    m_locationFile = bstrToAnsi(file);
    m_locationInDataStorage = inDataStorage;
    m_locationSubStorage = bstrToAnsi(subStorage);
    m_locationStream = bstrToAnsi(stream);
    m_formatVersion = version;
    m_dataLoaded = 0;
    m_currentBlock = -1;
    return S_OK;
}

// The samples in memory are those just written: only where they lie changes.
void CMeasurement::followSave(const std::string& file, SHORT inDataStorage, const std::string& subStorage,
                              const std::string& stream, LONG version) {
    if (m_locationFile.empty() || m_clsidLoader != GUID_NULL) return;  // a recording stays where it is
    m_locationFile = file;
    m_locationInDataStorage = inDataStorage;
    m_locationSubStorage = subStorage;
    m_locationStream = stream;
    m_formatVersion = version;
    m_dataOffset = static_cast<LONG>(MeasurementStreamFormat::kBlock1Size + MeasurementStreamFormat::kBlock2Size +
                                     MeasurementStreamFormat::kBlock3Size);
    CloseDataStream();
}

// Back to the overview picture taken by GenerateOptimizedArray; only long data has one.
HRESULT CMeasurement::Optimize() {
    if (!m_longFileFeature) return S_OK;
    if (m_size <= 0) return S_OK;
    if (m_optimizedYReal.empty()) return E_FAIL;
    const SampleVector re = m_optimizedYReal, im = m_optimizedYImag, x = m_optimizedX;
    Variant reArray, imArray;
    reArray.vt = VT_ARRAY | VT_R4;
    reArray.parray = makeFloatArray(re);
    if (!im.empty()) {
        imArray.vt = VT_ARRAY | VT_R4;
        imArray.parray = makeFloatArray(im);
    }
    Bstr dimension;
    dimensionName(m_ydDimension, dimension.out());
    if (dimension.view().empty()) dimension = Bstr(std::string_view("1"));
    HRESULT h = YArray(&reArray, static_cast<LONG>(re.size()), &imArray, dimension.get());
    if (FAILED(h)) return h;
    if (axisHasXVector(m_xAxisType) && !x.empty()) {
        LONG uncompleted = m_isUncompleted;
        m_isUncompleted = 0;
        Variant xArray;
        xArray.vt = VT_ARRAY | VT_R4;
        xArray.parray = makeFloatArray(x);
        put_XArray(xArray);
        m_isUncompleted = uncompleted;
    }
    m_compressionFactor = m_optimizedCompressionFactor;
    m_xStart = m_optimizedXStart;
    m_currentBlock = -1;
    m_isUsefullData = 0;
    if (m_maxBlockSize < m_fileSamples) {
        if (m_maxBlockSize != 0) m_compressionFactor = static_cast<float>(m_fileSamples) / static_cast<float>(m_maxBlockSize);
    } else {
        m_isUsefullData = 1;
    }
    return S_OK;
}

// The parent is a measurement (it knows MeasShmLink) whose own parent is the workspace, or the
// workspace itself; the workspace's parent is the project, and its Master is -1 for a master.
bool CMeasurement::IsMasterProjectParent(IDispatch* parent) {
    DISPID id;
    Variant workspace = Variant::fromDispatch(parent);
    if (SUCCEEDED(latebound::memberId(parent, u"MeasShmLink", &id)) &&
        (FAILED(latebound::get(parent, u"Parent", &workspace)) || workspace.vt != VT_DISPATCH))
        return false;
    Variant project, master;
    if (!workspace.pdispVal || FAILED(latebound::get(workspace.pdispVal, u"Parent", &project)) ||
        project.vt != VT_DISPATCH || !project.pdispVal)
        return false;
    return SUCCEEDED(latebound::get(project.pdispVal, u"Master", &master)) && SUCCEEDED(master.changeType(VT_I4)) &&
           master.lVal == -1;
}

std::string CMeasurement::linkOfParent(IDispatch* parent) {
    Variant link;
    if ((SUCCEEDED(latebound::get(parent, u"MeasShmLink", &link)) || SUCCEEDED(latebound::get(parent, u"ShmLink", &link))) &&
        SUCCEEDED(link.changeType(VT_BSTR)))
        return bstrToAnsi(link.bstrVal);
    return {};
}

bool CMeasurement::InitShmInfo() {
    if (!m_measShmLink.empty() && m_shm.IsOpen()) return true;
    m_measShmLink.clear();
    GUID id;
    if (!CWorkspace::GenerateNewUID(id)) return false;
    const std::string link = CWorkspace::GetFormattedGuid(id, kShmRecordSize);
    if (!m_shm.Create(shmRecordName(link), kShmRecordSize)) return false;
    m_measShmLink = link;
    return true;
}

// The workspace's current name from its shared record; without a record that holds one, the name
// stands as last stored.
HRESULT CMeasurement::get_Workspace(BSTR* v) {
    if (!v) return E_POINTER;
    std::string link = m_linkName;
    IDispatch* parent = m_parent.get();
    if (link.empty() && parent && IsMasterProjectParent(parent)) link = linkOfParent(parent);
    std::string name = trimmed(readShmRecord(link));
    if (name.empty()) name = trimmed(m_workspaceName);
    *v = allocBstrFromAnsi(name);
    return S_OK;
}

// The text of the record that MeasShmLink names: the link text of the workspace.
HRESULT CMeasurement::get_MeasShmLink(BSTR* v) {
    if (!v) return E_POINTER;
    *v = allocBstrFromAnsi(trimmed(readShmRecord(m_measShmLink)));
    return S_OK;
}

HRESULT CMeasurement::put_MeasShmLink(BSTR v) {
    if (!v) return E_POINTER;
    m_measShmLink = bstrToAnsi(v);
    return S_OK;
}

}  // namespace nvdl

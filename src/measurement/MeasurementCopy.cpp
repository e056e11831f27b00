// CMeasurement: the one copy engine behind Clone, CloneHeaderOnly, Copy and CopyHeader.
#include "frame/LateBound.h"
#include "measurement/Measurement.h"
#include "platform/DebugTrace.h"

namespace nvdl {

namespace {

void share(IDispatch*& slot, IDispatch* source) {
    if (source) source->AddRef();
    if (slot) slot->Release();
    slot = source;
}

// Clones each item of one collection into another, through the items' own Clone.
void cloneItems(CObjectCollection& from, CObjectCollection& to) {
    for (std::size_t i = 0; i < from.size(); ++i) {
        IDispatch* item = from.itemAt(i);
        DISPID id;
        Variant clone;
        if (FAILED(latebound::memberId(item, u"Clone", &id)) || FAILED(latebound::call(item, id, &clone)) ||
            FAILED(clone.changeType(VT_DISPATCH)) || !clone.pdispVal)
            continue;
        Variant key, before, after;
        LONG index;
        to.Add(clone.pdispVal, &key, &before, &after, &index);
    }
}

}  // namespace

HRESULT CMeasurement::copyEngine(CMeasurement& target, bool headerOnly) {
    try {
        target.m_yReal.clear();
        target.m_yImag.clear();
        target.m_x.clear();
        LoadFromDisk();
        if (m_tag.empty() && m_id.empty()) GenerateStaticUnicId(m_id);  // the source gets its identity
        target.m_tag.clear();

        target.m_softwareRevision = m_softwareRevision;
        target.m_workspaceName = m_workspaceName;
        target.m_linkName = m_linkName;
        target.m_channelFileID = m_channelFileID;
        target.m_clsidLoader = m_clsidLoader;
        std::size_t uid = m_name.find(".UID.");
        target.m_name = uid == std::string::npos ? m_name : m_name.substr(0, uid);

        target.m_functionType = m_functionType;
        target.m_response = m_response;
        target.m_responseChannel = m_responseChannel;
        target.m_reference = m_reference;
        target.m_referenceChannel = m_referenceChannel;
        target.m_xAxisType = m_xAxisType;
        target.m_xStart = m_xStart;
        target.m_xIncrement = m_xIncrement;
        target.m_storageUnitX = m_storageUnitX;
        target.m_storageUnitY = m_storageUnitY;
        target.m_averagingType = m_averagingType;
        target.m_averagingParameter = m_averagingParameter;
        target.m_averages = m_averages;
        target.m_overlap = m_overlap;
        target.m_windowType = m_windowType;
        target.m_windowParameter = m_windowParameter;
        target.m_measurementTime = m_measurementTime;
        target.m_testId = m_testId;
        target.m_functionQualifier = m_functionQualifier;
        target.m_acousticWeighting = m_acousticWeighting;
        target.m_environment = m_environment;
        target.m_userId = m_userId;
        target.m_order = m_order;
        target.m_rpm = m_rpm;
        target.m_z = m_z;
        target.m_bandwidthCorrectionFactor = m_bandwidthCorrectionFactor;
        target.m_power = m_power;
        target.m_yDimensionText = m_yDimensionText;
        share(target.m_xdDimension, m_xdDimension);
        share(target.m_ydDimension, m_ydDimension);
        share(target.m_zdDimension, m_zdDimension);
        target.m_overload = m_overload;
        target.m_usage = m_usage;
        target.m_size = m_size;
        target.m_complex = m_complex;
        target.m_isUncompleted = m_isUncompleted;
        target.m_checkOnUnicId = m_checkOnUnicId;
        target.m_compressionFactor = m_compressionFactor;
        target.m_optimizedCompressionFactor = m_optimizedCompressionFactor;
        target.m_optimizedXStart = m_optimizedXStart;
        target.m_isUsefullData = m_isUsefullData;
        target.m_currentBlock = m_currentBlock;
        target.m_blockStartOffset = m_blockStartOffset;
        target.m_maxBlockSize = m_maxBlockSize;
        target.m_longFileFeature = m_longFileFeature;
        target.m_dataOffset = m_dataOffset;
        target.m_fileSamples = m_fileSamples;
        target.m_locationFile = m_locationFile;
        target.m_locationSubStorage = m_locationSubStorage;
        target.m_locationStream = m_locationStream;
        target.m_locationInDataStorage = m_locationInDataStorage;
        target.m_formatVersion = m_formatVersion;
        target.CheckRegistryMaxBlockSize();
        if (target.m_fileSamples <= target.m_maxBlockSize) target.m_dataLoaded = 1;

        cloneItems(m_parameters, target.m_parameters);
        if (!headerOnly) {
            cloneItems(m_measurements, target.m_measurements);
            cloneItems(m_dataBlocks, target.m_dataBlocks);
        }

        target.m_optimizedYReal.clear();
        target.m_optimizedYImag.clear();
        if (m_size > 0 && !headerOnly) {
            target.m_yReal = m_yReal;
            if (m_complex) target.m_yImag = m_yImag;
            target.m_optimizedYReal = m_optimizedYReal;
            target.m_optimizedYImag = m_optimizedYImag;
        }
        if (!m_longFileFeature) {
            target.m_maxBlockSize = m_size;
            target.CheckRegistryMaxBlockSize();
            target.m_fileSamples = m_size;
        }
        if (!headerOnly && axisHasXVector(m_xAxisType) && m_size > 0) {
            target.m_x = m_x;
            target.m_optimizedX = m_optimizedX;
        } else {
            target.m_optimizedX.clear();
        }
        return S_OK;
    } catch (const std::exception&) {
        DebugTrace("CMeasurement::Copy: Unhandled exception, size set to 0");
        target.m_size = 0;
        target.m_yReal.clear();
        target.m_yImag.clear();
        target.m_x.clear();
        return E_FAIL;
    }
}

HRESULT CMeasurement::Clone(IMeasurement** copy) {
    if (!copy) return E_POINTER;
    CMeasurement* fresh = createMeasurement();
    copyEngine(*fresh, false);
    *copy = fresh;
    return S_OK;
}

HRESULT CMeasurement::CloneHeaderOnly(IMeasurement** copy) {
    if (!copy) return E_POINTER;
    CMeasurement* fresh = createMeasurement();
    copyEngine(*fresh, true);
    *copy = fresh;
    return S_OK;
}

HRESULT CMeasurement::Copy(IMeasurement* target) {
    CMeasurement* to = from(target);
    if (!to) return E_POINTER;
    return copyEngine(*to, false);
}

HRESULT CMeasurement::CopyHeader(IMeasurement* target) {
    CMeasurement* to = from(target);
    if (!to) return E_POINTER;
    return copyEngine(*to, true);
}

}  // namespace nvdl

// Amplitude and energy corrections of the measurement window types.
#include "nvdl/daSignal.h"

namespace {

struct WindowCorrectionRow {
    long windowType;
    daWindowCorrection correction;
};

// Amplitude correction: the inverse of the window's mean (coherent gain), so a sine keeps its
// height. Bandwidth correction: the window's equivalent noise bandwidth in lines, mean square over
// squared mean.
constexpr WindowCorrectionRow kRows[] = {
    {1301, {daeUniform, 1.0f, 1.0f}},
    {1302, {daeHanning, 2.0f, 1.5f}},
    {1303, {daeHamming, 1.851853f, 1.362826f}},
    {1304, {daeFlattop, 4.637f, 3.771f}},
    {1305, {daeForce, 1.0f, 1.0f}},
    {1306, {daeExponential, 1.0f, 1.0f}},
    {1307, {daeBlackman, 2.380954f, 1.726757f}},
    {1308, {daeKaiserBessel, 2.4871f, 1.8f}},
};

constexpr daWindowCorrection kUniform = {daeUniform, 1.0f, 1.0f};

}  // namespace

daWindowCorrection daGetWindowCorrection(long windowType)
{
    for (const WindowCorrectionRow& row : kRows)
        if (row.windowType == windowType)
            return row.correction;
    return kUniform;
}

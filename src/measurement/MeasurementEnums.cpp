// The measurement's one table of enumeration codes and texts, shared by every enumerated property:
// a text that stands twice ("", "Exponential") finds its lowest code.
#include "measurement/Measurement.h"

namespace nvdl {

namespace {

constexpr EnumPair kRows[] = {
    {105, u"Off"}, {106, u"A"}, {107, u"B"}, {108, u"C"},
    {1000, u""}, {1001, u"Time record"}, {1002, u"Spectrum"}, {1003, u"Autopower"}, {1004, u"Crosspower"},
    {1005, u"PSD"}, {1006, u"Crosspower Spectral Density"}, {1007, u"ESD"}, {1008, u"Cross-ESD"},
    {1009, u"Autocorrelation"}, {1010, u"Crosscorrelation"}, {1011, u"FRF"}, {1012, u"Impulse response"},
    {1013, u"Coherence"}, {1014, u"Multiple coherence"}, {1015, u"Partial coherence"}, {1016, u"Virtual coherence"},
    {1017, u"Histogram"}, {1018, u"Prob. distribution"}, {1019, u"Prob. density"}, {1020, u"Principal component"},
    {1021, u"MIF"}, {1022, u"Complex MIF"}, {1023, u"Sound pressure"}, {1024, u"Sound power level"},
    {1025, u"Sound intensity"}, {1026, u"Particle velocity"}, {1027, u"Loudness"}, {1028, u"Roughness"},
    {1030, u"Intelligibility"}, {1031, u"Articulation index"}, {1032, u"SRS"}, {1033, u"Cepstrum"},
    {1034, u"Complex cepstrum"}, {1035, u"Window"}, {1036, u"Weighting"}, {1037, u"Order"}, {1038, u"Sound power"},
    {1039, u"RPM"}, {1040, u"Custom"}, {1041, u"Time record+Spectrum"}, {1042, u"Time Values"}, {1043, u"Profile"},
    {1044, u"Spectrum2"}, {1045, u"Harmonic"}, {1046, u"RMS Time History"}, {1047, u"OASPL Time History"},
    {1048, u"Time record (Int1)"}, {1049, u"Time record (Int2)"}, {1050, u"Time record (Tacho)"},
    {1051, u"RMS Time History (Int1)"}, {1052, u"RMS Time History (Int2)"}, {1053, u"Peak+ Time History"},
    {1054, u"Peak- Time History"},
    {1100, u"Equidistant"}, {1101, u"Logarithmic"}, {1102, u"Categories"}, {1103, u"Octaves"}, {1104, u"Arbitrary"},
    {1200, u""}, {1201, u"Linear"}, {1202, u"Exponential"}, {1203, u"Peak level hold"}, {1204, u"Peak channel hold"},
    {1205, u"Stable"}, {1206, u"Scope"}, {1207, u"Peak hold"},
    {1300, u""}, {1301, u"Uniform"}, {1302, u"Hanning"}, {1303, u"Hamming"}, {1304, u"Flattop"}, {1305, u"Force"},
    {1306, u"Exponential"}, {1307, u"Blackman"}, {1308, u"Kaiser-Bessel"}, {1309, u"Force/Exponential"},
};
static_assert(std::size(kRows) == 81);

constexpr EnumTable kTable{kRows};

}  // namespace

const EnumTable& measurementEnumTable() { return kTable; }

bool isOneChannelFunction(LONG code) {
    return (code >= 1000 && code <= 1003) || code == 1005 || code == 1007 || code == 1009 ||
           (code >= 1017 && code <= 1019) || (code >= 1023 && code <= 1028) || (code >= 1030 && code <= 1038);
}

}  // namespace nvdl

// IMultiInput: the multi-input analysis of several references and several responses, line by line
// in frequency. It is given the input spectral matrix Gff (autopowers and crosspowers of the n
// references), the cross matrix Gxf (crosspowers of the m responses with the references) and the
// autopowers Gxx of the responses, and answers the H1 frequency response functions with their
// multiple coherences, the principal components of Gff and the inverse of Gff, as new measurements.
//
// Measurements are added in the order of the matrix layouts (rows and columns count from 1):
//   Gff(row, col) at position (col - 1)·n + (row - 1), that is column by column;
//   Gxf(response, reference) at position (reference - 1)·m + (response - 1);
//   Gxx(response) at position response - 1.
// Cross spectra are of the form row times the conjugate of column: Gxf(j, i) = X_j·conj(F_i).
//
// A count left at 0 is found at Analyze: Inputs from the number of Gff measurements (a square),
// Responses from the number of Gxx measurements, Lines from the shortest measurement.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

struct IMeasurement;

#define NVDL_IMULTIINPUT_MEMBERS(M)                                                                      \
    M(get, Inputs, (LONG* inputs))                                                                       \
    M(put, Inputs, (LONG inputs))                                                                        \
    M(get, Responses, (LONG* responses))                                                                 \
    M(put, Responses, (LONG responses))                                                                  \
    M(get, Lines, (LONG* lines))                                                                         \
    M(put, Lines, (LONG lines))                                                                          \
    /* Each takes a measurement or a collection of measurements, appended in its order. */               \
    M(call, AddGff, (IDispatch* measurements))                                                           \
    M(call, AddGxf, (IDispatch* measurements))                                                           \
    M(call, AddGxx, (IDispatch* measurements))                                                           \
    /* Forgets the measurements given and the results; the counts are kept. */                           \
    M(call, Clear, ())                                                                                   \
    /* Runs the principal components, the frequency responses and the input inverse. */                  \
    M(call, Analyze, ())                                                                                 \
    /* The results of the last Analyze, each a new measurement. */                                        \
    M(get, PrincipalComponent, (LONG index, IMeasurement** component))                                   \
    M(get, Frf, (LONG response, LONG reference, IMeasurement** frf))                                     \
    M(get, MultipleCoherence, (LONG response, IMeasurement** coherence))                                 \
    M(get, InverseGff, (LONG row, LONG col, IMeasurement** entry))                                       \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IMultiInput, NVDL_IMULTIINPUT_MEMBERS);

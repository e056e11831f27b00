// ITeacReader: the reader of recordings made by a TEAC data recorder, a component of the suite
// outside this module (a shared library registered for CLSID_TeacRecordingReader). The project's
// TEAC conversion drives it in this order: Open, IsOpen, GetSetup, ReadBlock until the source is
// exhausted, Close.
//
// The setup is a plain object with getters (ITeacSetup), not late bound: the acquisition (sample
// frequency, block size, length), the channel count, and per channel its name and its parameters
// by name; the conversion asks for "Y Unit Label", the unit of the channel's samples.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

// The class of the TEAC recording reader; files whose class names it as their loader are converted
// into project files, not loaded.
inline constexpr CLSID CLSID_TeacRecordingReader = {0xF8EACF49, 0xCB67, 0x41bc, {0x8A, 0xC7, 0xF2, 0x8A, 0x7A, 0xB6, 0x15, 0x32}};

// Channels are counted from 0. SampleCount is the length of the recording in samples per channel,
// 0 when the reader cannot tell.
#define NVDL_ITEACSETUP_MEMBERS(M)                                      \
    M(get, SampleFrequency, (double* value))                           \
    M(get, BlockSize, (LONG* value))                                   \
    M(get, SampleCount, (LONG* value))                                 \
    M(get, ChannelCount, (LONG* value))                                \
    M(call, ChannelName, (LONG channel, BSTR* name))                   \
    M(call, ChannelParameter, (LONG channel, BSTR name, BSTR* value))

NVDL_INTERFACE(ITeacSetup, NVDL_ITEACSETUP_MEMBERS);

// Open gives -1 in `status` when the file cannot be read as a recording, 0 otherwise. IsOpen gives a
// non-zero value while a recording is open. ReadBlock fills `samples` with the next block of every
// channel, channel after channel, each BlockSize samples apart (`capacity` is the room in floats,
// at least ChannelCount times BlockSize); `count` receives the samples per channel of this block
// (the last block may be short) and `status` 1 for a block, 0 when the source is exhausted, -1 on
// a failure.
#define NVDL_ITEACREADER_MEMBERS(M)                                                 \
    M(call, Open, (BSTR file, LONG* status))                                       \
    M(call, IsOpen, (SHORT* open))                                                 \
    M(call, GetSetup, (ITeacSetup** setup))                                        \
    M(native, ReadBlock, (float* samples, LONG capacity, LONG* count, LONG* status)) \
    M(call, Close, ())

NVDL_INTERFACE(ITeacReader, NVDL_ITEACREADER_MEMBERS);

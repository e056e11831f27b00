// What the server module exports: everything declared between NVDL_API_BEGIN and NVDL_API_END in
// the public headers. The rest of the module is built hidden and stays inside it.
#pragma once

#define NVDL_API_BEGIN _Pragma("GCC visibility push(default)")
#define NVDL_API_END _Pragma("GCC visibility pop")

// The kernel's process-wide error flag and message buffer.
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "dspLib/daFailure.h"

namespace {

constexpr long kMessageCapacity = 1000;  // bytes, terminator included

char g_message[kMessageCapacity] = "";
int g_flag = 0;

}  // namespace

long daSetError(const char* text)
{
    g_flag = 1;
    if (text == nullptr) {
        g_message[0] = '\0';
        return 0;
    }
    size_t count = strnlen(text, kMessageCapacity - 1);
    std::memcpy(g_message, text, count);
    g_message[count] = '\0';
    return 0;
}

long daGetErrorFlag(int* flag)
{
    if (flag != nullptr)
        *flag = g_flag;
    return 0;
}

long daGetError(char* dst, long size)
{
    if (dst == nullptr || size <= 0)
        return 0;
    size_t limit = static_cast<size_t>(size - 1 < kMessageCapacity - 1 ? size - 1 : kMessageCapacity - 1);
    size_t count = strnlen(g_message, limit);
    std::memcpy(dst, g_message, count);
    dst[count] = '\0';
    return 0;
}

long daClearErrorFlag(void)
{
    g_flag = 0;
    return 0;
}

long daFail(const char* format, ...)
{
    g_flag = 1;
    va_list args;
    va_start(args, format);
    std::vsnprintf(g_message, sizeof g_message, format, args);
    va_end(args);
    return 1;
}

// Process-wide counts that decide whether the server may unload: live model objects and
// class-factory locks. Plain integers: objects live in their client's one thread.
#pragma once

extern long g_nObjects;
extern long g_nLocks;

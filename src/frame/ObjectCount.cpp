#include "frame/ObjectCount.h"

long g_nObjects = 0;
long g_nLocks = 0;

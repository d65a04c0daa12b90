#include "Config/qvConfig.h"

// Constructed before the other files' globals so that none of them can see it unbuilt.
QvConfig g_config __attribute__((init_priority(1000)));

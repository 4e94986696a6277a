// The version of the library as built, for programs and bindings that must know which build they
// loaded (the headers' macros only tell which one they were compiled against).
#include "QZVersion.h"

extern "C" QZ_API uint32_t QZ_Version(void) { return QZMATH_VERSION; }

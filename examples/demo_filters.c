/* Filter section of the demo. */
#include <stdio.h>

#include "demo.h"

void demo_filters(void) { printf("filters: not built yet\n"); }

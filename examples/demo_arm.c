/* Seven-joint control cycle of the demo. */
#include <stdio.h>

#include "demo.h"

int demo_arm(int argc, char **argv) {
    (void)argc;
    (void)argv;
    printf("seven-joint arm: not built yet\n");
    return 0;
}

/* The README's C example: one axis tracked at a 4 ms cycle, its code and what it prints. */
#include <stdio.h>

#include "QZDT.h"
#include "docs_example.h"

int main(void) {
    ShowSource(__FILE__, "c", "#include <QZDT.h>\n\n");
    printf("\nwhich prints:\n\n```\n");
    /* example begin */
    QZVDTState axis = {0};                 /* zeroed: operations refuse an uninitialised record */
    QZVDT_OnInit(&axis, 4.0, 50.0, 100.0); /* cycle 4 ms, 50 units/s, 100 units/s^2 */
    double cmd;
    QZVDT_OnDT(&axis, 0.0, &cmd);    /* the first step outputs the target itself */
    for (int k = 1; k <= 300; ++k) { /* once per control cycle: 1.2 s towards 10 */
        QZVDT_OnDT(&axis, 10.0, &cmd);
        if (k % 50 == 0) printf("t = %.1f s: cmd = %.6f\n", k * 0.004, cmd);
    }
    /* example end */
    printf("```\n");
    return 0;
}

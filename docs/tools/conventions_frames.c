/* The Denavit-Hartenberg example of docs/conventions.md: one modified (Craig) link transform. */
#include <stdio.h>

#include "QZMatrix.h"

int main(void) {
    const double deg = 0.017453292519943295;
    double t[16];
    QZ_DH2Matrix(90 * deg, 100, 50, 30 * deg, t);
    printf("```text\nQZ_DH2Matrix(alpha = 90°, a = 100, d = 50, theta = 30°, T):\n");
    for (int i = 0; i < 4; ++i) {
        printf("   ");
        for (int j = 0; j < 4; ++j) printf(" %10.6g", t[4 * i + j] + 0.0);
        printf("\n");
    }
    printf("```\n");
    return 0;
}

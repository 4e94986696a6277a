/* The Denavit-Hartenberg example of docs/conventions.md: one modified (Craig) link transform. */
#include <stdio.h>

#include "QZMatrix.h"
#include "docs_example.h"

int main(void) {
    const double deg = 0.017453292519943295;
    double t[16];
    QZ_DH2Matrix(90 * deg, 100, 50, 30 * deg, t);
    printf("```text\nQZ_DH2Matrix(alpha = 90°, a = 100, d = 50, theta = 30°, T):\n");
    PrintTransform(t);
    printf("```\n");
    return 0;
}

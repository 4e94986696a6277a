/* The layout examples of docs/conventions.md: row-major storage and where a transform keeps its
 * position. */
#include <stdio.h>

#include "QZMatrix.h"
#include "docs_example.h"

int main(void) {
    const double m[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    double out[3], t[16];
    QZ_MatrixMultVect3(m, (const double[]){1, 0, 0}, out);
    printf(
        "```text\nM = {1, 2, 3, 4, 5, 6, 7, 8, 9};  QZ_MatrixMultVect3(M, (1, 0, 0), out)  ->  "
        "out = (%g, %g, %g)\n\n",
        out[0], out[1], out[2]);
    QZ_XYZABC2Matrix4DEG((const double[]){100, 200, 300, 10, 20, 30}, t);
    printf("QZ_XYZABC2Matrix4DEG((100, 200, 300, 10, 20, 30), T):\n");
    PrintTransform(t);
    printf("```\n");
    return 0;
}

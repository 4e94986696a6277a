/* The public headers compile as C99 and their functions link from C. */
#include "QZBaseMath.h"
#include "QZDT.h"
#include "QZFLT.h"
#include "QZMatrix.h"
#include "QZQuaternions.h"
#include "QZVersion.h"

#include <stdio.h>

int main(void) {
    int failures = 0;
    QZVDTState axis = {0};
    QZSMVState smv = {0};
    double out = -1.0;

    if (QZ_Floor(-2.5) != -3.0) ++failures;
    if (QZVDT_OnDT(&axis, 1.0, &out) != 0 || out != -1.0) ++failures; /* refused before init */
    if (QZVDT_OnInit(&axis, 4.0, 50.0, 100.0) != 1) ++failures;
    if (QZVDT_OnDT(&axis, 1.0, &out) != 1 || out != 1.0) ++failures;

    if (QZSMV_OnInit(&smv, 0.0, 0.5, 1.0, 0.01) != 1) ++failures;
    QZSMV_OnUpdateV(&smv, 0.5, &out);
    if (out <= 0.0 || out > 0.5) ++failures;

    /* The loaded library is the one these headers describe. */
    if (QZ_Version() != QZMATH_VERSION || QZMATH_VERSION_MAJOR != QZ_Version() / 10000) ++failures;

    printf("%d failures\n", failures);
    return failures == 0 ? 0 : 1;
}

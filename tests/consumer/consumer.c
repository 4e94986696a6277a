/* A minimal program built against QZMath (installed, or in a parent project): both include forms
 * find the headers, the loaded library is the version the headers describe, and one tracker step
 * moves the axis. */
#include <QZDT.h>
#include <QZVersion.h>
#include <qzmath/QZDT.h>
#include <stdio.h>

int main(void) {
    QZVDTState axis = {0};
    double out = 0.0;
    QZVDT_OnInit(&axis, 4.0, 50.0, 100.0);
    QZVDT_OnDT(&axis, 0.0, &out);
    QZVDT_OnDT(&axis, 1.0, &out);
    printf("consumer: QZMath %s (loaded %u), %.6f\n", QZMATH_VERSION_STRING, (unsigned)QZ_Version(),
           out);
    return (QZ_Version() == QZMATH_VERSION && out > 0.0 && out < 1.0) ? 0 : 1;
}

/*
 * Prints the examples of the run-time dead band in docs/units-and-limits.md: a request within 0.1
 * changes nothing, two requests between the same two cycles do, and so does a request in a finer
 * unit. Checked against the page by scripts/check-docs.sh.
 */
#include <stdio.h>

#include "QZDT.h"

static const double kRadToDeg = 57.29577951308232;

int main(void) {
    QZVDTState s = {0}, d = {0};
    double out;
    QZVDT_OnInit(&s, 1.0, 2.175, 7.5);
    QZVDT_OnDT(&s, 0.0, &out);
    printf("```text\n");
    unsigned rc = QZVDT_OnSetRunTimeVel(&s, 2.1);
    printf(
        "QZVDT_OnInit(&s, 1.0, 2.175, 7.5);  QZVDT_OnSetRunTimeVel(&s, 2.1)  ->  %u, velLmt %g\n",
        rc, s.velLmt);
    rc = QZVDT_OnSetRunTimeAcc(&s, 7.45);
    printf(
        "QZVDT_OnSetRunTimeAcc(&s, 7.45)                                     ->  %u, accLmt %g\n",
        rc, s.accLmt);

    printf("\ntwo requests between the same two cycles:\n");
    QZVDT_OnSetRunTimeVel(&s, 2.1 + 1.0);
    QZVDT_OnSetRunTimeVel(&s, 2.1);
    printf("QZVDT_OnSetRunTimeVel(&s, 2.1 + 1.0);  QZVDT_OnSetRunTimeVel(&s, 2.1)  ->  velLmt %g\n",
           s.velLmt);
    QZVDT_OnSetRunTimeAcc(&s, 7.45 + 1.0);
    QZVDT_OnSetRunTimeAcc(&s, 7.45);
    printf("QZVDT_OnSetRunTimeAcc(&s, 7.45 + 1.0); QZVDT_OnSetRunTimeAcc(&s, 7.45) ->  accLmt %g\n",
           s.accLmt);

    QZVDT_OnInit(&d, 1.0, 2.175 * kRadToDeg, 7.5 * kRadToDeg);
    QZVDT_OnDT(&d, 0.0, &out);
    QZVDT_OnSetRunTimeVel(&d, 2.1 * kRadToDeg);
    printf(
        "\nin degrees: initialised at %.3f deg/s, QZVDT_OnSetRunTimeVel(&d, %.3f)  ->  "
        "velLmt %.3f\n",
        2.175 * kRadToDeg, 2.1 * kRadToDeg, d.velLmt);
    printf("```\n");
    return 0;
}

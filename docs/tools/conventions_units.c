/* The unit examples of docs/conventions.md: cycle times in milliseconds kept in seconds, the
 * first step of a move, and limits clamped at initialisation but not at run time. */
#include <stdio.h>

#include "QZDT.h"

int main(void) {
    QZVDTState s = {0};
    double out;
    printf("```text\n");
    QZVDT_OnInit(&s, 4.0, 50, 100);
    printf("QZVDT_OnInit(&s, 4.0, 50, 100)  ->  s.dt = %g\n", s.dt);
    QZVDT_OnDT(&s, 0.0, &out);
    QZVDT_OnDT(&s, 10.0, &out);
    printf("  first step from 0 towards 10  ->  s.vel = %g, position %g\n", s.vel, out);
    QZVDT_OnInit(&s, 0.5, 50, 100);
    printf("QZVDT_OnInit(&s, 0.5, 50, 100)  ->  s.dt = %g\n\n", s.dt);

    QZVDT_OnInit(&s, 4.0, 300, 5000);
    printf("QZVDT_OnInit(&s, 4.0, 300, 5000)  ->  velLmt %g, accLmt %g\n", s.velLmt, s.accLmt);
    const int r = QZVDT_OnSetRunTimeVel(&s, 500);
    printf("QZVDT_OnSetRunTimeVel(&s, 500)    ->  %d, velLmt %g\n", r, s.velLmt);
    printf("```\n");
    return 0;
}

/* A minimal program built against an installed QZMath: one tracker step must move the axis. */
#include <QZDT.h>
#include <stdio.h>

int main(void) {
    QZVDTState axis = {0};
    double out = 0.0;
    QZVDT_OnInit(&axis, 4.0, 50.0, 100.0);
    QZVDT_OnDT(&axis, 0.0, &out);
    QZVDT_OnDT(&axis, 1.0, &out);
    printf("consumer: %.6f\n", out);
    return (out > 0.0 && out < 1.0) ? 0 : 1;
}

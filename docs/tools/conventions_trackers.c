/*
 * Prints what the tracker examples 01, 02 and 03 print about their moves (peak speed,
 * acceleration and jerk, settling), for the section of docs/conventions.md on what each tracker
 * limits. The examples' own sources are compiled in here, so the figures on the page are the ones
 * those programs give; their profiles are written to /dev/null.
 */
#define main Example01
#define absd Absd01
#include "01_single_axis.c"
#undef absd
#undef main
#define main Example02
#define absd Absd02
#include "02_seven_joints.c"
#undef absd
#undef main
#define main Example03
#define absd Absd03
#include "03_multistage.c"
#undef absd
#undef main

int main(void) {
    static char name[] = "example", profile[] = "/dev/null";
    char *argv[] = {name, profile, NULL};
    int (*const examples[])(int, char **) = {Example01, Example02, Example03};
    printf("```text\n");
    for (int i = 0; i < 3; ++i) {
        printf("%sexample 0%d:\n", i ? "\n" : "", i + 1);
        fflush(stdout);
        if (examples[i](2, argv) != 0) return 1;
    }
    printf("```\n");
    return 0;
}

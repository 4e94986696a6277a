/*
 * Helpers of the programs that print the worked examples of the docs.
 *
 * ShowSource prints, as a fenced block,
 * the given head (the includes the example needs, say) and then the lines of the program's own
 * source between a line holding "example begin" and one holding "example end", with the common
 * indentation removed. The example shown is thus the code that
 * ran. The programs run from the repository root, where __FILE__ names their source.
 */
#ifndef QZ_DOCS_EXAMPLE_H
#define QZ_DOCS_EXAMPLE_H

#include <stdio.h>
#include <string.h>

static inline void ShowSource(const char *file, const char *lang, const char *head) {
    char lines[64][160];
    int n = 0, inside = 0;
    size_t indent = 160;
    FILE *f = fopen(file, "r");
    if (!f) {
        perror(file);
        return;
    }
    while (n < 64 && fgets(lines[n], sizeof lines[n], f)) {
        if (strstr(lines[n], "example end")) break;
        if (inside) {
            const size_t lead = strspn(lines[n], " ");
            if (lines[n][lead] != '\n' && lead < indent) indent = lead;
            ++n;
        } else if (strstr(lines[n], "example begin")) {
            inside = 1;
        }
    }
    fclose(f);
    printf("```%s\n%s", lang, head);
    for (int i = 0; i < n; ++i) fputs(strlen(lines[i]) > indent ? lines[i] + indent : "\n", stdout);
    printf("```\n");
}

/* A 4-by-4 row-major transform, one row a line, indented; -0 printed as 0. */
static inline void PrintTransform(const double *t) {
    for (int i = 0; i < 4; ++i) {
        printf("   ");
        for (int j = 0; j < 4; ++j) printf(" %10.6g", t[4 * i + j] + 0.0);
        printf("\n");
    }
}

#endif

/* Prints the layout of every public record, one line per field in declaration order:
 *   RECORD FIELD OFFSET SIZE
 * and one line per record with its size:
 *   RECORD - 0 SIZEOF
 * Bindings in other languages mirror these records and compare their layout with this output.
 * The records and fields come from the headers themselves (qzrecords.h, written by the build). */
#include <stddef.h>
#include <stdio.h>

#include "qzrecords.h"

#define R(T) printf("%s - 0 %zu\n", #T, sizeof(T));
#define F(T, f, ...) printf("%s %s %zu %zu\n", #T, #f, offsetof(T, f), sizeof(((T *)0)->f));
#define NOTHING(T)

int main(void) {
    QZ_RECORDS(R, F, F, NOTHING)
    return 0;
}

/* Field layouts of the library's records, in declaration order: what a state line lists and what
 * a record digest covers. Padding is never read, so records compare by value, field by field.
 * The records and fields come from the headers themselves (qzrecords.h, written by the build). */
#include <stddef.h>

#include "qzc.h"
#include "qzrecords.h"

/* One field table per record, then its layout. */
#define RECORD(T) static const qzc_field fields_##T[] = {
#define FIELD(T, f, kind, n) {#f, offsetof(T, f), kind, n, NULL},
#define EMBED(T, f, Sub, n) {#f, offsetof(T, f), 'r', n, &qzc_rec_##Sub},
#define END(T)                                                 \
    }                                                          \
    ;                                                          \
    const qzc_record qzc_rec_##T = {#T, sizeof(T), fields_##T, \
                                    (int)(sizeof fields_##T / sizeof fields_##T[0])};
QZ_RECORDS(RECORD, FIELD, EMBED, END)
#undef RECORD
#undef END

/* Every record a sequence may work on. */
#define RECORD(T) &qzc_rec_##T,
#define NOTHING(...)
const qzc_record *const qzc_records[] = {QZ_RECORDS(RECORD, NOTHING, NOTHING, NOTHING)};
const int qzc_record_count = (int)(sizeof qzc_records / sizeof qzc_records[0]);

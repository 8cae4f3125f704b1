// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

/* A part of a board in C: a pressure sensor on I2C that measures anew for each read of its register
 * 0x10 (two bytes, most significant first, in hPa). Register 0x00 holds its identification, 0x5A.
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static unsigned pressure = 1013;
static unsigned pointer = 0;

static unsigned registerAt(unsigned index) {
    switch (index) {
    case 0x00:
        return 0x5A;
    case 0x10:
        return pressure >> 8;
    case 0x11:
        return pressure & 0xFF;
    default:
        return 0x00;
    }
}

/* What stands behind "NAME": in the line; the adapter's lines have each name once. */
static const char* valueOf(const char* line, const char* name) {
    char pattern[32];
    snprintf(pattern, sizeof pattern, "\"%s\":", name);
    const char* found = strstr(line, pattern);
    return found == NULL ? "" : found + strlen(pattern);
}

static int is(const char* line, const char* operation) {
    return strncmp(valueOf(line, "op") + 1, operation, strlen(operation)) == 0;
}

static void answer(const char* line) {
    if (strstr(line, "\"veltra-part\"") != NULL) {
        printf("{\"veltra-part\":1}\n");
    } else if (is(line, "start")) {
        printf("{\"ack\":true}\n");
    } else if (is(line, "write")) {
        /* The first byte is the register pointer; nothing can be written to. */
        const char* digits = valueOf(line, "data") + 1;
        sscanf(digits, "%2x", &pointer);
        printf("{\"ack\":%zu}\n", strspn(digits, "0123456789abcdef") / 2);
    } else if (is(line, "read")) {
        unsigned long count = strtoul(valueOf(line, "count"), NULL, 10);
        printf("{\"data\":\"");
        for (; count > 0; --count) {
            printf("%02x", registerAt(pointer++));
        }
        printf("\"}\n");
    } else if (is(line, "set")) {
        const char* value = valueOf(line, "value") + 1;
        if (strncmp(valueOf(line, "name"), "\"pressure\"", 10) == 0) {
            pressure = (unsigned)strtoul(value, NULL, 10) & 0xFFFF;
            printf("{}\n");
        } else {
            printf("{\"error\":\"there is no such setting; there is: pressure\"}\n");
        }
    } else {
        printf("{}\n"); /* stop */
    }
    /* Without it the answer would stay in this program. */
    fflush(stdout);
}

int main(void) {
    char line[4096];
    while (fgets(line, sizeof line, stdin) != NULL) {
        answer(line);
    }
    return 0; /* the adapter has gone */
}

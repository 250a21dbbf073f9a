/* An adapter of the driver "process" in C, without a library: the load of this machine, and a level that can be written.
 * It does not subscribe, so the panel polls it. docs/process-protocol.md describes the lines.
 * The panel's lines have their members in a fixed order and without blanks, so sscanf is enough for them. */
#include <stdio.h>
#include <string.h>

enum { LONGEST_LINE = 4096, LONGEST_NAME = 64 };

static long level = 50;

static void refuse(long id, const char* reason) {
    printf("{\"type\":\"error\",\"id\":%ld,\"message\":\"%s\"}\n", id, reason);
}

static void answer_load(long id) {
    char load[32] = "";
    FILE* const file = fopen("/proc/loadavg", "r");
    const int count = file == NULL ? 0 : fscanf(file, "%31[0-9.]", load);
    if (file != NULL) {
        fclose(file);
    }
    if (count != 1) {
        refuse(id, "/proc/loadavg cannot be read");
        return;
    }
    printf("{\"type\":\"result\",\"id\":%ld,\"value\":%s}\n", id, load);
}

static void answer_read(long id, const char* name) {
    if (strcmp(name, "load") == 0) {
        answer_load(id);
    } else if (strcmp(name, "level") == 0) {
        printf("{\"type\":\"result\",\"id\":%ld,\"value\":%ld}\n", id, level);
    } else {
        refuse(id, "there is no such parameter");
    }
}

static void answer_write(long id, const char* name, long value) {
    if (strcmp(name, "level") != 0) {
        refuse(id, "it can only be read");
    } else if (value < 0 || value > 100) {
        refuse(id, "expected 0 to 100");
    } else {
        level = value;
        printf("{\"type\":\"result\",\"id\":%ld}\n", id);
    }
}

static void answer(const char* line) {
    char name[LONGEST_NAME + 1];
    char type[16];
    long id;
    long value;
    if (sscanf(line, "{\"type\":\"%15[a-z]\",\"id\":%ld", type, &id) != 2) {
        return; /* a greeting, an error, or a message of a later version */
    }
    if (sscanf(line, "{\"type\":\"read\",\"id\":%ld,\"name\":\"%64[^\"]\"}", &id, name) == 2) {
        answer_read(id, name);
    } else if (sscanf(line, "{\"type\":\"write\",\"id\":%ld,\"name\":\"%64[^\"]\",\"value\":%ld", &id, name, &value) == 3) {
        answer_write(id, name, value);
    } else {
        refuse(id, "unknown request");
    }
}

int main(void) {
    char line[LONGEST_LINE + 2];
    setvbuf(stdout, NULL, _IOLBF, 0);
    puts("{\"type\":\"hello\",\"version\":1}");
    while (fgets(line, sizeof line, stdin) != NULL) { /* until the panel has ended */
        answer(line);
    }
    return 0;
}

/* The counterpart of ours.cpp for libplist: propertylist_libplist read|write FILE. */

#include <plist/plist.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

static double milliseconds(void) {
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (double)now.tv_sec * 1e3 + (double)now.tv_nsec / 1e6;
}

static long peak_memory(void) {
    FILE *status = fopen("/proc/self/status", "r");
    char line[256];
    long peak = 0;
    while (status && fgets(line, sizeof(line), status) && sscanf(line, "VmHWM: %ld", &peak) != 1)
        continue;
    return peak;
}

static plist_t read_list(const char *path) {
    FILE *file = fopen(path, "rb");
    if (!file)
        exit(EXIT_FAILURE);
    fseek(file, 0, SEEK_END);
    const long size = ftell(file);
    rewind(file);
    char *bytes = malloc((size_t)size);
    if (!bytes || fread(bytes, 1, (size_t)size, file) != (size_t)size)
        exit(EXIT_FAILURE);
    fclose(file);
    plist_t list = NULL;
    plist_from_xml(bytes, (uint32_t)size, &list);
    free(bytes);
    if (!list)
        exit(EXIT_FAILURE);
    return list;
}

int main(int argc, char **argv) {
    if (argc != 3)
        return EXIT_FAILURE;
    double start = milliseconds();
    plist_t list = read_list(argv[2]);
    if (strcmp(argv[1], "write") == 0) {
        char *bytes = NULL;
        uint32_t size = 0;
        start = milliseconds();
        plist_to_xml(list, &bytes, &size);
        if (!bytes)
            return EXIT_FAILURE;
    }
    const double time = milliseconds() - start;
    printf("%.2f %ld\n", time, peak_memory());
    fflush(stdout);
    _Exit(EXIT_SUCCESS);
}

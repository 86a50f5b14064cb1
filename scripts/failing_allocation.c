/* Preloaded, makes one allocation of the program fail: the one that FAILING_ALLOCATION counts from 1
   at the beginning of main(). ALLOCATION_COUNT names a file for the number of them. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>

void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);

typedef int Main(int, char**, char**);

static Main* program;
static long allocations;
static long failing = -1; /* before main() nothing counts */

static int fails(void)
{
    if (failing < 0 || __sync_add_and_fetch(&allocations, 1) != failing) {
        return 0;
    }
    errno = ENOMEM;
    return 1;
}

void* malloc(size_t size)
{
    return fails() ? NULL : __libc_malloc(size);
}

void* calloc(size_t count, size_t size)
{
    return fails() ? NULL : __libc_calloc(count, size);
}

void* realloc(void* old, size_t size)
{
    return fails() ? NULL : __libc_realloc(old, size);
}

static int countedMain(int count, char** arguments, char** environment)
{
    const char* const number = getenv("FAILING_ALLOCATION");
    const char* const path = getenv("ALLOCATION_COUNT");
    failing = number == NULL ? 0 : atol(number);
    const int code = program(count, arguments, environment);
    failing = -1;
    FILE* const file = path == NULL ? NULL : fopen(path, "w");
    if (file != NULL) {
        fprintf(file, "%ld", allocations);
        fclose(file);
    }
    return code;
}

int __libc_start_main(Main* main, int count, char** arguments, void (*begin)(void), void (*end)(void),
                      void (*loaderEnd)(void), void* stackEnd)
{
    int (*start)(Main*, int, char**, void (*)(void), void (*)(void), void (*)(void), void*) =
        dlsym(RTLD_NEXT, "__libc_start_main");
    program = main;
    return start(countedMain, count, arguments, begin, end, loaderEnd, stackEnd);
}

/* Loads one shared library and prints the processor time that took, in nanoseconds. */
#define _POSIX_C_SOURCE 200809L

#include <dlfcn.h>
#include <stdio.h>
#include <time.h>

static double now(void)
{
    struct timespec time;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return (double)time.tv_sec * 1e9 + (double)time.tv_nsec;
}

int main(int argc, char** argv)
{
    if (argc != 2)
        return 0; /* what is left is the cost of starting */
    const double start = now();
    if (!dlopen(argv[1], RTLD_NOW))
    {
        fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    printf("%.0f\n", now() - start);
    return 0;
}

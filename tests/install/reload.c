/* Loads the library, uses and closes it 1,000 times: reload LIBRARY. Memory, descriptors and mappings must not grow. */
#include <dirent.h>
#include <dlfcn.h>
#include <malloc.h>
#include <stdio.h>
#include <string.h>

struct usage
{
    size_t heap;
    int descriptors;
    int mappings;
};

static int countDescriptors(void)
{
    int count = 0;
    DIR* folder = opendir("/proc/self/fd");
    while (folder && readdir(folder))
        ++count;
    if (folder)
        closedir(folder);
    return count;
}

static int countMappings(void)
{
    int count = 0;
    FILE* file = fopen("/proc/self/maps", "r");
    for (int c; file && (c = fgetc(file)) != EOF;)
        count += c == '\n';
    if (file)
        fclose(file);
    return count;
}

static struct usage measure(void)
{
    const struct usage now = {mallinfo2().uordblks, countDescriptors(), countMappings()};
    return now;
}

static int loadAndUse(const char* path)
{
    void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!library)
    {
        fprintf(stderr, "%s\n", dlerror());
        return 0;
    }
    const char* (*version)(void);
    int (*openPort)(const char*);
    *(void**)&version = dlsym(library, "ZUCOM_GetDLLVersion");
    *(void**)&openPort = dlsym(library, "ZUCOM_OpenPort");
    const int worked = version && openPort && strcmp(version(), "04.00.00") == 0 && openPort("/dev/null") == -1000;
    return dlclose(library) == 0 && worked;
}

int main(int argc, char** argv)
{
    struct usage first = {0, 0, 0}, last;
    if (argc != 2)
        return 2;
    for (int round = 0; round < 1000; ++round)
    {
        if (!loadAndUse(argv[1]))
        {
            fprintf(stderr, "round %d failed\n", round);
            return 1;
        }
        if (round < 10) /* what is set up once, for measuring too, is set up by then */
            first = measure();
    }
    last = measure();
    if (last.heap == first.heap && last.descriptors == first.descriptors && last.mappings == first.mappings)
        return 0;
    fprintf(stderr, "heap %zu to %zu bytes, descriptors %d to %d, mappings %d to %d\n", first.heap, last.heap,
            first.descriptors, last.descriptors, first.mappings, last.mappings);
    return 1;
}

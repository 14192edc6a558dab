// Prints whether the kernel has started this program with privileges that its caller lacks, and
// where the configuration file lies then: run from a set-user-ID copy by root_path_test.
#include <sys/auxv.h>

#include <cstdio>

#include "root_path.h"

int main() {
    char path[kRootPathSize];
    const char* const found = RootPath(path, "/vexorapi.ini");
    std::printf("%s %s\n", getauxval(AT_SECURE) != 0 ? "privileged" : "ordinary",
                found == nullptr ? "nowhere" : found);
    return 0;
}

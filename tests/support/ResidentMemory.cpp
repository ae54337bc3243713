#include "support/ResidentMemory.h"

#include <fstream>
#include <malloc.h>
#include <unistd.h>

double residentMegabytes()
{
    malloc_trim(0);
    std::ifstream statm("/proc/self/statm");
    double size = 0.0;
    double resident = 0.0;
    statm >> size >> resident;
    return resident * double(sysconf(_SC_PAGESIZE)) / 1024.0 / 1024.0;
}

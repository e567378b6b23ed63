#include "benchmarks/Processors.h"

#include <sched.h>

namespace bench
{
namespace
{
std::vector<int> findAllowedProcessors()
{
    std::vector<int> found;
    cpu_set_t allowed;
    if (sched_getaffinity(0, sizeof(allowed), &allowed) != 0)
        return found;
    for (int processor = 0; processor < CPU_SETSIZE; ++processor)
    {
        if (CPU_ISSET(processor, &allowed))
            found.push_back(processor);
    }
    return found;
}
} // namespace

const std::vector<int>& allowedProcessors()
{
    static const std::vector<int> theProcessors = findAllowedProcessors();
    return theProcessors;
}

void pinTo(int processor)
{
    cpu_set_t chosen;
    CPU_ZERO(&chosen);
    CPU_SET(processor, &chosen);
    sched_setaffinity(0, sizeof(chosen), &chosen);
}
} // namespace bench

// Class-level operators route through the memory layer; its failures become library exceptions.
#include <gtest/gtest.h>

#include "mem/mem_AllocationOperators.h"
#include "mem/mem_Memory.h"
#include "nex/nex_OutOfMemoryException.h"

namespace {

struct Plain : mem_AllocationOperators {
    double payload[4];
};
struct Tiny : mem_AllocationOperatorsTiny {
    int value;
};

// Every allocation form fails, with the library's exception, when the memory layer is told to
// fail it, which proves the routing: the runtime's own heap would not notice the hook.
TEST(MemAllocationOperators, EveryFormRoutesToTheMemoryLayer)
{
    const std::vector<std::pair<const char*, void (*)()>> forms = {
        {"new", [] { delete new Plain; }},
        {"new[]", [] { delete[] new Plain[3]; }},
        {"tiny new", [] { delete new Tiny; }},
        {"tiny new[]", [] { delete[] new Tiny[5]; }},
    };
    for (const auto& form : forms) {
        mem_TestFailAllocation(1);
        EXPECT_THROW(form.second(), nex_OutOfMemoryException) << form.first;
        mem_TestFailAllocation(0);
        EXPECT_NO_THROW(form.second()) << form.first;
    }
}

}  // namespace

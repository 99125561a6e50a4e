#include "cli/ProcessHeap.h"

#include <cstdint>
#include <cstdlib>

#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

namespace pulsara {

namespace {

constexpr std::uintptr_t kHugePage = 2u << 20;
// The most glibc takes as a threshold for serving a request from the heap rather than from mmap.
constexpr int kHeapStep = 32 << 20;
constexpr std::size_t kGrowth = 1 << 20;

} // namespace

void prepareProcessHeap()
{
    // The helper threads of an export allocate from the same heap rather than from arenas of
    // their own, and large buffers come from the heap too.
    mallopt(M_ARENA_MAX, 1);
    mallopt(M_MMAP_THRESHOLD, kHeapStep);
    mallopt(M_TOP_PAD, kHeapStep);
    mallopt(M_TRIM_THRESHOLD, 2 * kHeapStep);
    // More than the heap's first pages hold, so that it grows by a whole step, if it has not yet;
    // the heap then runs from the probe on to the break.
    void* probe = std::malloc(kGrowth);
    auto start = reinterpret_cast<std::uintptr_t>(probe);
    auto end = reinterpret_cast<std::uintptr_t>(::sbrk(0));
    auto from = (start + kHugePage - 1) & ~(kHugePage - 1);
    auto to = end & ~(kHugePage - 1);
    if (probe && start < end && to > from)
        ::madvise(reinterpret_cast<void*>(from), to - from, MADV_HUGEPAGE);
    std::free(probe);
}

} // namespace pulsara

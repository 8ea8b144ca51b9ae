#include "allocator.h"

#include <cstdlib>
#include <mutex>

// Sanitizers see only the allocations they intercept: under them blocks come
// from operator new, whatever the build options say. (ThreadSanitizer would
// otherwise report a block freed on one thread and reused on another through
// mimalloc's uninstrumented free lists as a race.)
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#undef QUILLJSON_MIMALLOC_LIBRARY
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#undef QUILLJSON_MIMALLOC_LIBRARY
#endif
#endif

#if defined(QUILLJSON_MIMALLOC_LIBRARY)
#include <dlfcn.h>
#include <mimalloc.h> // the option names only: the library is not linked
#endif

namespace quilljson {
namespace detail {

namespace {

void* newBlock(size_t size) {
    return ::operator new(size, std::nothrow);
}
void deleteBlock(void* p) {
    ::operator delete(p);
}

void choose() {
    void* (*allocate)(size_t) = newBlock;
    void (*free)(void*) = deleteBlock;
#if defined(QUILLJSON_MIMALLOC_LIBRARY)
    // QUILLJSON_NO_MIMALLOC=1 keeps operator new, for memory checkers that
    // see only malloc.
    if (!std::getenv("QUILLJSON_NO_MIMALLOC")) {
        // RTLD_LOCAL keeps its malloc and free out of the symbols the process
        // resolves. It stays loaded for the life of the process: its blocks
        // may outlive anyone who would close it.
        bool const ours = !dlopen(QUILLJSON_MIMALLOC_LIBRARY, RTLD_NOW | RTLD_NOLOAD);
        if (void* lib = dlopen(QUILLJSON_MIMALLOC_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {
            auto miAllocate = reinterpret_cast<void* (*)(size_t)>(dlsym(lib, "mi_malloc"));
            auto miFree = reinterpret_cast<void (*)(void*)>(dlsym(lib, "mi_free"));
            auto setOption = reinterpret_cast<void (*)(mi_option_t, long)>(dlsym(lib, "mi_option_set"));
            if (miAllocate && miFree) allocate = miAllocate, free = miFree;
            // Pages a freed value leaves empty go back to the system after
            // 25 ms by default, so a large document parsed again a little
            // later faults all its pages in anew (on a busy machine that is
            // every parse). Half a second keeps them for the next one and
            // still returns them soon; only done when the library is ours
            // alone, never to a mimalloc the host loaded for itself.
            if (ours && setOption) {
                setOption(mi_option_decommit_delay, 500);
                setOption(mi_option_segment_decommit_delay, 500);
            }
        }
    }
#endif
    g_blockFunctions.free.store(free, std::memory_order_release);
    g_blockFunctions.allocate.store(allocate, std::memory_order_release);
}

std::once_flag g_chosen;

void* firstAllocate(size_t size) {
    std::call_once(g_chosen, choose);
    return g_blockFunctions.allocate.load(std::memory_order_acquire)(size);
}

// Only reached by a thread that has not yet seen the choice another thread
// made when it allocated this block.
void firstFree(void* p) {
    std::call_once(g_chosen, choose);
    g_blockFunctions.free.load(std::memory_order_acquire)(p);
}

} // namespace

BlockFunctions g_blockFunctions{{firstAllocate}, {firstFree}};

} // namespace detail
} // namespace quilljson

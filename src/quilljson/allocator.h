// Where the value's containers, object nodes and array buffers live.
//
// A parsed document is thousands of small blocks made and freed in bursts.
// When the library is built with QUILLJSON_MIMALLOC_LIBRARY they come from
// mimalloc's own functions (mi_malloc, mi_free), which are thread-safe, free
// blocks made on another thread and hand a thread's pages back when it ends.
// mimalloc is opened privately at run time (see allocator.cpp) because its
// shared library also defines malloc and free: linked normally it would take
// over the whole process's malloc, which a library loaded by a host must
// never do. Without it (not built in, not found at run time, or in sanitizer
// builds so that every block stays visible to them) blocks come from
// operator new.
#pragma once

#include <atomic>
#include <cstddef>
#include <new>

namespace quilljson {
namespace detail {

// The allocator's two functions. They start as stand-ins that choose the
// allocator on first use (once per process, never changed afterwards: a block
// is always freed by the allocator that made it) and then forward; the
// pointers are atomic so that threads starting at once read them safely, and
// relaxed loads cost what plain loads do.
struct BlockFunctions {
    std::atomic<void* (*)(size_t)> allocate; // returns null on failure
    std::atomic<void (*)(void*)> free;
};
extern BlockFunctions g_blockFunctions;

inline void* allocateBlock(size_t size) {
    void* p = g_blockFunctions.allocate.load(std::memory_order_relaxed)(size);
    if (!p) throw std::bad_alloc();
    return p;
}

inline void freeBlock(void* p) noexcept {
    g_blockFunctions.free.load(std::memory_order_relaxed)(p);
}

template <typename T> struct BlockAllocator {
    using value_type = T;
    BlockAllocator() noexcept = default;
    template <typename U> BlockAllocator(BlockAllocator<U> const&) noexcept {}
    T* allocate(size_t n) {
        if (n > size_t(-1) / sizeof(T)) throw std::bad_array_new_length();
        return static_cast<T*>(allocateBlock(n * sizeof(T)));
    }
    void deallocate(T* p, size_t) noexcept { freeBlock(p); }
    template <typename U> bool operator==(BlockAllocator<U> const&) const noexcept { return true; }
    template <typename U> bool operator!=(BlockAllocator<U> const&) const noexcept { return false; }
};

} // namespace detail
} // namespace quilljson

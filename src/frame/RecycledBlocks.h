// Memory for objects that are made and released by the thousand, such as the measurements of a
// block-wise analysis: each thread keeps a few released blocks of the class's size and hands them
// out again, so that making such an object skips the general allocator. A block may be released on
// another thread than the one that took it; it then joins that thread's blocks. What a thread keeps
// is freed when the thread ends. Under AddressSanitizer every block goes to the general allocator,
// so that a use after release is still reported.
#pragma once

#include <cstddef>
#include <new>

namespace nvdl {

#if defined(__SANITIZE_ADDRESS__)
#define NVDL_RECYCLE_BLOCKS 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define NVDL_RECYCLE_BLOCKS 0
#endif
#endif
#ifndef NVDL_RECYCLE_BLOCKS
#define NVDL_RECYCLE_BLOCKS 1
#endif

template <std::size_t BlockSize, std::size_t Kept = 16>
class RecycledBlocks {
public:
    static void* take(std::size_t size) {
#if NVDL_RECYCLE_BLOCKS
        Shelf& shelf = Shelf::mine();
        if (size == BlockSize && shelf.count > 0) return shelf.blocks[--shelf.count];
#endif
        return ::operator new(size);
    }

    static void give(void* block, [[maybe_unused]] std::size_t size) noexcept {
#if NVDL_RECYCLE_BLOCKS
        Shelf& shelf = Shelf::mine();
        if (size == BlockSize && shelf.open && shelf.count < Kept) {
            shelf.blocks[shelf.count++] = block;
            return;
        }
#endif
        ::operator delete(block);
    }

private:
    // Trivially destructible, so that it can still be reached while the thread's other objects go.
    struct Shelf {
        void* blocks[Kept];
        std::size_t count;
        bool open;

        static Shelf& mine() noexcept {
            thread_local Shelf shelf{{}, 0, true};
            thread_local Closer closer{shelf};
            return shelf;
        }
    };
    // Frees the kept blocks when the thread ends; blocks given back after that are freed at once.
    struct Closer {
        Shelf& shelf;
        ~Closer() {
            shelf.open = false;
            while (shelf.count > 0) ::operator delete(shelf.blocks[--shelf.count]);
        }
    };
};

}  // namespace nvdl

// cell_memory.h -- the memory of classes whose instances come and go in great numbers.

#ifndef NQ_CONTAINERS_CELL_MEMORY_H
#define NQ_CONTAINERS_CELL_MEMORY_H

#include <cstddef>
#include <new>

// Declares the operators of a class whose instances come from slabs of their own; the
// class's source defines them. What is derived from the class and larger, or aligned
// more strictly, has memory of the ordinary kind. When memory is exhausted a plain
// `new X` is null, too.
#define NQ_CELL_MEMORY                                                              \
  static void* operator new(std::size_t size) noexcept;                             \
  static void* operator new(std::size_t size, const std::nothrow_t&) noexcept;      \
  static void* operator new(std::size_t size, std::align_val_t alignment) noexcept; \
  static void* operator new(std::size_t size, std::align_val_t alignment,           \
                            const std::nothrow_t&) noexcept;                        \
  static void* operator new(std::size_t, void* place) noexcept {                    \
    return place;                                                                   \
  }                                                                                 \
  static void operator delete(void* place, std::size_t size) noexcept;              \
  static void operator delete(void* place, std::size_t size,                        \
                              std::align_val_t alignment) noexcept;

#endif  // NQ_CONTAINERS_CELL_MEMORY_H

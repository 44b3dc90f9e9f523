// The counters behind AllocationGuard and LockCount, and the hooks that feed them.
#include "tests/support/AllocationGuard.h"

#include <errno.h>
#include <pthread.h>

#include <atomic>
#include <cstddef>
#include <new>

#if defined(__has_feature)
#define TOLMARA_HAS_FEATURE(name) __has_feature(name)
#else
#define TOLMARA_HAS_FEATURE(name) 0
#endif
#if defined(__SANITIZE_THREAD__) || TOLMARA_HAS_FEATURE(thread_sanitizer)
#define TOLMARA_THREAD_SANITIZER 1
#endif
#if defined(__SANITIZE_ADDRESS__) || TOLMARA_HAS_FEATURE(address_sanitizer)
#define TOLMARA_ADDRESS_SANITIZER 1
#endif

namespace {

constinit thread_local long allocation_count = 0;
constinit thread_local long free_count = 0;
constinit thread_local long lock_count = 0;
constinit std::atomic<std::size_t> refused_size = 0;

// The thread sanitizer calls no hook for aligned allocations.
void count_unhooked_allocation() {
#ifdef TOLMARA_THREAD_SANITIZER
  ++allocation_count;
#endif
}

}  // namespace

#if defined(TOLMARA_ADDRESS_SANITIZER) || defined(TOLMARA_THREAD_SANITIZER)

// The sanitizers own the heap and offer hooks instead. gcc ships no header for this entry.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*malloc_hook)(const volatile void*,
                                                                             std::size_t),
                                                         void (*free_hook)(const volatile void*));

namespace {

// The hooks run inside the sanitizer, where its own instrumentation is out of place.
__attribute__((no_sanitize("address", "thread"))) void count_allocation(const volatile void*,
                                                                        std::size_t) {
  ++allocation_count;
}
__attribute__((no_sanitize("address", "thread"))) void count_free(const volatile void* p) {
  if (p) ++free_count;
}

[[maybe_unused]] const int installed =
    __sanitizer_install_malloc_and_free_hooks(count_allocation, count_free);

}  // namespace

#else

// The program's own definitions of the heap entries come before the C library's, also for shared
// objects, and pass on to the C library by its internal names.
extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* p, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* p);

#define TOLMARA_HEAP_ENTRY __attribute__((visibility("default")))

TOLMARA_HEAP_ENTRY void* malloc(std::size_t size) {
  ++allocation_count;
  return __libc_malloc(size);
}

TOLMARA_HEAP_ENTRY void* calloc(std::size_t count, std::size_t size) {
  ++allocation_count;
  return __libc_calloc(count, size);
}

TOLMARA_HEAP_ENTRY void* realloc(void* p, std::size_t size) {
  ++allocation_count;
  return __libc_realloc(p, size);
}

TOLMARA_HEAP_ENTRY void* memalign(std::size_t alignment, std::size_t size) {
  ++allocation_count;
  return __libc_memalign(alignment, size);
}

TOLMARA_HEAP_ENTRY void* aligned_alloc(std::size_t alignment, std::size_t size) {
  ++allocation_count;
  return __libc_memalign(alignment, size);
}

TOLMARA_HEAP_ENTRY int posix_memalign(void** out, std::size_t alignment, std::size_t size) {
  const bool is_power_of_two = alignment != 0 && (alignment & (alignment - 1)) == 0;
  if (!is_power_of_two || alignment % sizeof(void*) != 0) return EINVAL;
  ++allocation_count;
  void* p = __libc_memalign(alignment, size);
  if (!p) return ENOMEM;
  *out = p;
  return 0;
}

TOLMARA_HEAP_ENTRY void free(void* p) {
  if (p) ++free_count;
  __libc_free(p);
}

}  // extern "C"

#endif

// The linker's --wrap sends the program's own calls of these entries here.
extern "C" {

int __real_pthread_mutex_lock(pthread_mutex_t* mutex);
int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex);
int __real_posix_memalign(void** out, std::size_t alignment, std::size_t size);
int __wrap_posix_memalign(void** out, std::size_t alignment, std::size_t size);
void* __real_aligned_alloc(std::size_t alignment, std::size_t size);
void* __wrap_aligned_alloc(std::size_t alignment, std::size_t size);

void* __real__Znwm(std::size_t size);  // operator new
void* __wrap__Znwm(std::size_t size);

void* __wrap__Znwm(std::size_t size) {
  if (size == refused_size.load(std::memory_order_relaxed)) throw std::bad_alloc();
  return __real__Znwm(size);
}

int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex) {
  ++lock_count;
  return __real_pthread_mutex_lock(mutex);
}

int __wrap_posix_memalign(void** out, std::size_t alignment, std::size_t size) {
  count_unhooked_allocation();
  return __real_posix_memalign(out, alignment, size);
}

void* __wrap_aligned_alloc(std::size_t alignment, std::size_t size) {
  count_unhooked_allocation();
  return __real_aligned_alloc(alignment, size);
}

}  // extern "C"

AllocationGuard::AllocationGuard()
    : allocations_before(allocation_count), frees_before(free_count) {}
long AllocationGuard::allocations() const { return allocation_count - allocations_before; }
long AllocationGuard::frees() const { return free_count - frees_before; }

LockCount::LockCount() : locks_before(lock_count) {}
long LockCount::locks() const { return lock_count - locks_before; }

RefusedSize::RefusedSize(std::size_t size) { refused_size = size; }
RefusedSize::~RefusedSize() { refused_size = 0; }

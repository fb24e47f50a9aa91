#include "platform/memoire.h"

#include <cstdint>
#include <cstdlib>

#if defined(__GLIBC__)
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>
#endif

void PrepareMemoire() {
#if defined(__GLIBC__)
    constexpr size_t MO = size_t(1) << 20;
    mallopt(M_MMAP_THRESHOLD, (int)(256 * MO));
    mallopt(M_TRIM_THRESHOLD, (int)(512 * MO));
    // The heap grows in steps of this much address space; only what is
    // touched takes memory.
    mallopt(M_TOP_PAD, (int)(64 * MO));
#ifdef MADV_HUGEPAGE
    // A large block makes the heap grow now (by it and the step above), so
    // that the whole range can be marked; freed, it stays in the heap.
    void* bloc = malloc(32 * MO);
    if (!bloc) return;
    const uintptr_t debut = ((uintptr_t)bloc + 2 * MO - 1) & ~(uintptr_t)(2 * MO - 1);
    const uintptr_t fin = (uintptr_t)sbrk(0);
    if (fin > debut) madvise((void*)debut, fin - debut, MADV_HUGEPAGE);
    free(bloc);
#endif
#endif
}

PagesEnFond::PagesEnFond([[maybe_unused]] void* debut, [[maybe_unused]] size_t taille) {
#if defined(__linux__) && defined(MADV_POPULATE_WRITE)
    constexpr size_t MO = size_t(1) << 20;
    if (!debut || taille < MO) return;
    const uintptr_t page = (uintptr_t)sysconf(_SC_PAGESIZE);
    const uintptr_t bas = (uintptr_t)debut & ~(page - 1);
    const uintptr_t haut = ((uintptr_t)debut + taille + page - 1) & ~(page - 1);
    // A kernel without the call says so, and the block is left alone.
    fil = std::thread([bas, haut] { madvise((void*)bas, haut - bas, MADV_POPULATE_WRITE); });
#endif
}

PagesEnFond::~PagesEnFond() {
    if (fil.joinable()) fil.join();
}

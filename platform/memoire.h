// How the process takes memory. A conversion allocates and frees a few large
// buffers (the file, the picture, codes, indices) one after the other; left to
// itself the allocator maps each afresh and the kernel faults it in page by
// page, which costs more than most of the work.
#pragma once
#include <cstddef>
#include <thread>

// Once, at start-up: large blocks come from the heap and stay there when
// freed, so that the next step reuses pages already in place, and the heap
// asks the kernel for huge pages where it can.
void PrepareMemoire();

// Makes the pages of a large block present from another thread, while this
// one works on something else: the first write to each then finds it in
// place. Nothing in the block is written. Waits for the other thread when
// it goes out of scope; a small block, or a system without the call, is left
// as it is.
struct PagesEnFond {
    PagesEnFond(void* debut, size_t taille);
    ~PagesEnFond();
    PagesEnFond(const PagesEnFond&) = delete;
    PagesEnFond& operator=(const PagesEnFond&) = delete;

  private:
    std::thread fil;
};

// How the process takes memory. A conversion allocates and frees a few large
// buffers (the file, the picture, codes, indices) one after the other; left to
// itself the allocator maps each afresh and the kernel faults it in page by
// page, which costs more than most of the work.
#pragma once

// Once, at start-up: large blocks come from the heap and stay there when
// freed, so that the next step reuses pages already in place, and the heap
// asks the kernel for huge pages where it can.
void PrepareMemoire();

#include "basekit/sys/sys_pages.h"

// Memory is given page by page here.
void Sys_PreparePages(void*, std::size_t) noexcept {}

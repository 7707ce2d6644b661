#include "basekit/sys/sys_store.h"

Sys_Store::~Sys_Store() = default;

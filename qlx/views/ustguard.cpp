#include "qlx/views/ustguard.h"

constinit StGuard* gInnermostGuard = nullptr;

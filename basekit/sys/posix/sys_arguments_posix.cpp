#include "basekit/sys/sys_arguments.h"

Sys_Arguments::Sys_Arguments(int argc, char** argv) {
    SetTexts(std::vector<std::string>(argv, argv + argc));
}

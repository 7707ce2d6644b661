// Writes "class_hierarchy.txt", a line for every class of the framework with its ancestors, and
// says how many classes there are.
#include <cstdio>

#include "qlx/foundation/uclassdesc.h"

int main() {
    ClassDesc::InitUClassDesc();
    ClassDesc::DumpClassHierarchy();
    int count = 0;
    for (const ClassDesc* desc = ClassDesc::fgClassDescList; desc; desc = desc->GetNextClassDesc())
        ++count;
    std::printf("class_hierarchy.txt: %d classes\n", count);
    return count > 0 ? 0 : 1;
}

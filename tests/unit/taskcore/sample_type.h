#pragma once
#include "tcltasks/core/HTCGetTclStringRep.h"
namespace sample {
struct part {
    std::string name;
    int pins;
};
part* find_part(const std::string& name);
} // namespace sample
template <>
struct vek::tcltasks::native_object<sample::part*> {
    static std::string name(sample::part* p) { return p->name; }
    static sample::part* find(const std::string& name) { return sample::find_part(name); }
};

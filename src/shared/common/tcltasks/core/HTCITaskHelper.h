#pragma once

#include "tcltasks/core/HTCIFactoryHelper.h"
#include "tcltasks/core/itask_helper.h"

namespace vek::tcltasks {

/// The base of a command's task; brings the task's factory along.
template <class T, class Tags = null_tag>
class HTCITaskHelper : public itask_helper<T, Tags> {
public:
    class factory : public HTCIFactoryHelper<T> {};

    ~HTCITaskHelper() override = default;
};

} // namespace vek::tcltasks

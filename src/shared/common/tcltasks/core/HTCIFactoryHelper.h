#pragma once

#include "tcltasks/core/ifactory.h"

namespace vek::tcltasks {

template <class T>
class ifactory_helper : public ifactory {
public:
    std::shared_ptr<itask> create_task() override { return std::make_shared<T>(); }
    const char* task_name() const override { return T::command; }
};

/// The base of a command's factory.
template <class T>
class HTCIFactoryHelper : public ifactory_helper<T> {
public:
    ~HTCIFactoryHelper() override = default;
};

} // namespace vek::tcltasks

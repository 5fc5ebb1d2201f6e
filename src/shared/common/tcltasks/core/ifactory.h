#pragma once

#include <memory>

namespace vek::tcltasks {

class itask;

/// Makes the task objects of one command. Has no data; lives from registration to unregistration.
class ifactory {
public:
    virtual std::shared_ptr<itask> create_task() = 0;
    virtual const char* task_name() const = 0;
    virtual ~ifactory() = default;
};

} // namespace vek::tcltasks

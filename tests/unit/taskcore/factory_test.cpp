// What every command of the library has to tell of itself.
#include "support.h"

#include "tcltasks/core/Omu_commontasks.h"

using namespace vek::tcltasks;

namespace {

/// Commands for support need no category: help does not list them.
bool may_lack_category(const std::string& name) {
    return name.starts_with("debug::");
}

class Factories : public TaskTest {
protected:
    Factories() {
        EXPECT_EQ(Omu_commontasks_Init(interp), TCL_OK) << result();
        task_manager::getTaskNames(names);
    }
    std::vector<std::string> names;
};

TEST_F(Factories, EveryTaskHasADescriptionAnOwnerAndACategory) {
    ASSERT_GT(names.size(), 10u);
    for (const std::string& name : names) {
        SCOPED_TRACE(name);
        const auto task = task_manager::createTask(name);
        ASSERT_TRUE(task);
        EXPECT_EQ(task->task_name(), name);
        EXPECT_FALSE(task->task_description().empty());
        EXPECT_NE(task->task_description(), "dummy");
        const auto& options = dynamic_cast<const task_options_base&>(*task);
        EXPECT_FALSE(options.owner().empty());
        EXPECT_NE(options.owner(), "unknown");
        EXPECT_TRUE(may_lack_category(name) || !task->task_categories().empty());
    }
}

TEST_F(Factories, SetParamBreaksTheUndoChainAndSetPropertyIsUndone) {
    const auto param = task_manager::createTask("common::set_param");
    ASSERT_TRUE(param);
    EXPECT_TRUE(param->affects_undo(interp, 0, nullptr));
    EXPECT_FALSE(param->can_undo(interp, 0, nullptr));
    for (const char* name : {"omu::set_property", "omu::add_properties", "omu::set_attribute",
                             "common::create_property", "common::reset_property"}) {
        SCOPED_TRACE(name);
        const auto property = task_manager::createTask(name);
        ASSERT_TRUE(property);
        EXPECT_TRUE(property->affects_undo(interp, 0, nullptr));
        EXPECT_TRUE(property->can_undo(interp, 0, nullptr));
        EXPECT_TRUE(property->can_redo(interp, 0, nullptr));
    }
}

TEST_F(Factories, EveryOptionHasHelpAndEveryPositionAnOption) {
    for (const std::string& name : names) {
        const auto task = task_manager::createTask(name);
        const auto& options = dynamic_cast<const task_options_base&>(*task);
        for (const auto& option : options.get_options_description().options()) {
            SCOPED_TRACE(name + " -" + option.name);
            EXPECT_FALSE(option.name.empty() || option.name.front() == '-');
            EXPECT_EQ(option.semantic->switch_name(), option.name);
            EXPECT_FALSE(option.help.empty());
            for (const std::string& other : option.excludes) {
                EXPECT_GE(options.get_options_description().find(other), 0) << other;
            }
        }
        for (const auto& position : options.get_positional_options().positions()) {
            EXPECT_GE(options.get_options_description().find(position.name), 0)
                << name << " " << position.name;
        }
    }
}

TEST_F(Factories, EveryTaskHasHelpInEachForm) {
    for (const std::string& name : names) {
        SCOPED_TRACE(name);
        const auto task = task_manager::createTask(name);
        EXPECT_FALSE(task->task_help(interp, "syntax").empty());
        EXPECT_NE(task->task_help(interp, "args").find("ARGUMENTS"), std::string::npos);
        EXPECT_FALSE(task->task_help(interp, "long").empty());
    }
}

} // namespace

#include "platform/msg/ComMsgMgrProjIface.h"

#include <mutex>
#include <optional>
#include <system_error>

#include "platform/env/HUTFile.h"
#include "platform/env/HUTPathUtils.h"
#include "platform/msg/HEX.h"
#include "platform/msg/detail/RuleFile.h"
#include "platform/msg/detail/RuleStore.h"
#include "platform/param/HPAParamMgr.h"

using com_msg_mgr::RuleStore;

namespace {

constexpr std::string_view parameter = "messaging.projectDirectory";

struct Project {
    std::recursive_mutex mutex; // guards all but `unsaved`; recursive: the operations use each other
    std::string directory;
    std::uint64_t savedChanges = 0; // what projectChanges() was when the file was written
    std::size_t savedRules = 0;
    std::optional<std::uint64_t> listener;
    std::atomic<bool> unsaved{false};

    static Project& get() {
        static Project& project = *new Project; // rules are saved up to the very end of the process
        return project;
    }

    std::string file() const { return HUTPathUtils::join({directory, ComMsgMgrProjIface::ruleFileName}); }
    void markSaved(std::size_t rules) {
        savedChanges = RuleStore::get().projectChanges();
        savedRules = rules;
        unsaved = false;
    }
};

void follow(HPAParam& param) {
    if (param.name != parameter)
        return;
    try {
        const std::string directory = param.string_value();
        directory.empty() ? ComMsgMgrProjIface::closeProject() : ComMsgMgrProjIface::openProject(directory);
    } catch (const HEXError& error) {
        error.print();
    }
}

} // namespace

void ComMsgMgrProjIface::openProject(const std::string& given) {
    const std::string directory = HUTFile::getCanonicalName(given);
    Project& project = Project::get();
    std::lock_guard lock(project.mutex);
    if (directory == project.directory)
        return;
    closeProject();
    if (!HUTPathUtils::isDirectory(directory))
        throw HEXError(ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, "@17-5467@%s\n", given));
    std::vector<ComMsgMgrRuleParts> rules =
        com_msg_mgr::read_rule_file(HUTPathUtils::join({directory, ruleFileName}));
    project.directory = directory;
    RuleStore::get().beginProject();
    for (ComMsgMgrRuleParts& parts : rules)
        RuleStore::get().add(std::move(parts));
    project.markSaved(rules.size());
}

void ComMsgMgrProjIface::closeProject() {
    Project& project = Project::get();
    std::lock_guard lock(project.mutex);
    if (project.directory.empty())
        return;
    saveProject();
    RuleStore::get().endProject();
    project.directory.clear();
    project.unsaved = false;
}

void ComMsgMgrProjIface::saveProject() {
    Project& project = Project::get();
    std::lock_guard lock(project.mutex);
    if (project.directory.empty() || project.savedChanges == RuleStore::get().projectChanges())
        return;
    const RuleStore::Map rules = RuleStore::get().all(true);
    // Also when writing fails: it is tried again at the next change.
    project.markSaved(rules.size());
    try {
        com_msg_mgr::write_rule_file(project.file(), rules);
    } catch (const std::system_error& error) {
        project.savedChanges = UINT64_MAX;
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_CRITICAL_WARNING, "@17-5468@%s%s\n", project.file(),
                           error.code().message());
    }
}

std::string ComMsgMgrProjIface::getProject() {
    Project& project = Project::get();
    std::lock_guard lock(project.mutex);
    return project.directory;
}

void ComMsgMgrProjIface::followParameter() {
    Project& project = Project::get();
    std::lock_guard lock(project.mutex);
    if (project.listener)
        return;
    try {
        project.listener = HPAParamMgr::getParamMgr().addListener(follow);
    } catch (const HEXError&) {
        // Without parameters there is nothing to follow; whoever reads one hears why.
    }
}

void ComMsgMgrProjIface::stopFollowingParameter() {
    Project& project = Project::get();
    std::lock_guard lock(project.mutex);
    if (project.listener)
        HPAParamMgr::getParamMgr().removeListener(*project.listener);
    project.listener.reset();
}

ComMsgMgrProjIface::Iterator ComMsgMgrProjIface::beginMsgControlRules(const std::string& scope) {
    if (scope.empty())
        return Iterator(RuleStore::get().all());
    return HUTFile::getCanonicalName(scope) == getProject() ? Iterator(RuleStore::get().all(true))
                                                            : Iterator();
}

ComMsgMgrProjIface::Iterator ComMsgMgrProjIface::endMsgControlRules(const std::string&) {
    return Iterator();
}

void com_msg_mgr::note_rule_change() {
    Project& project = Project::get();
    std::lock_guard lock(project.mutex);
    if (project.directory.empty())
        return;
    // Many rules are made one after the other: writing all of them each time would take for ever.
    constexpr std::size_t batches = 8;
    const std::uint64_t changes = RuleStore::get().projectChanges() - project.savedChanges;
    if (changes > project.savedRules / batches)
        ComMsgMgrProjIface::saveProject();
    else
        project.unsaved = changes > 0;
}

void com_msg_mgr::save_changed_rules() {
    if (Project::get().unsaved.load(std::memory_order_relaxed))
        ComMsgMgrProjIface::saveProject();
}

#include "tcltasks/property/detail/setting.h"

#include "platform/msg/ComMsgMgr.h"
#include "platform/taskcore/HTCCollectionContextMgr.h"
#include "platform/taskcore/task_manager.h"

namespace HTCProperty::detail::setting {

using namespace HCPProperty;

bool bUsingSetPropertyDictionaryWay = false;

namespace {

const vek::tcltasks::HTCICollectionContext* context_of(const Objects& objects) {
    return objects.has_body() ? objects.body().collection_context().get() : nullptr;
}

std::string context_text(const Objects& objects) {
    const auto* context = context_of(objects);
    return context ? context->string_rep() : std::string();
}

bool is_silent(const Objects& objects) {
    const auto* context = context_of(objects);
    return context && context->is_silent();
}

} // namespace

std::shared_ptr<Setter> create_property_setter(const Objects& objects, std::string& name) {
    const tclany& first = (*objects)[0];
    const auto info = getObjectInfoOrError(first);
    Utils::warnIfDeprecated(first, name);
    auto spec = info->getSpec(name, false);
    const bool usesDefault = !spec || spec->getAttrSpec()->isUserDefined();
    if (usesDefault) {
        spec = info->getSpec(defaultSpecName, false);
    }
    const std::string cls = Get::getClass(*info);
    if (!spec) {
        Utils::noSuchProperty(name, cls, "@17-142@%s%s\n");
    }
    // A collection of ports may hold ports of both directions, each with properties of its own.
    const bool lenient = cls == "port" && objects.size() > 1;
    const auto validate = [&](const tclany& object, std::string& out) {
        if (lenient) {
            spec->isValid(object, name, out);
        } else {
            spec->isValidOrError(object, name, out);
        }
    };
    std::string canonical;
    for (const tclany& object : *objects) {
        validate(object, canonical);
    }
    if (!usesDefault) {
        HATAttrUtils::writableOrError(spec->getAttrSpec(), name);
    }
    auto setter = spec->getSetter();
    if (!setter) {
        ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_CRITICAL_WARNING, "@17-107@%s\n", name);
    }
    canonical.clear();
    validate(first, canonical);
    if (!canonical.empty()) {
        name = canonical;
    }
    return setter;
}

void checkNotifySetPropertyMultipleObjects(const Objects& objects, const std::string& name) {
    if (bUsingSetPropertyDictionaryWay ||
        objects.size() < vek::tcltasks::task_manager::multipleObjectsEventMinThreshHold() ||
        is_silent(objects)) {
        return;
    }
    HUTGuiEvent::fire<HTCSetPropertyMultipleObjects>((*objects)[0], objects, context_text(objects), name,
                                                     objects.size());
}

void notifyDictionary(const Objects& objects, const Pairs& pairs) {
    if (bUsingSetPropertyDictionaryWay && !is_silent(objects)) {
        HUTGuiEvent::fire<HTCSetMultiplePropertiesDictionary>((*objects)[0], objects, context_text(objects),
                                                              pairs);
    }
}

int undo(Setter* setter, Tcl_Interp* interp, const std::string& name) {
    if (!setter) {
        return 0;
    }
    const int status = setter->undo(interp);
    setter->finish(name);
    return status;
}

int redo(Setter* setter, Tcl_Interp* interp, const std::string& name) {
    if (!setter) {
        return 0;
    }
    const int status = setter->redo(interp);
    setter->finish(name);
    return status;
}

} // namespace HTCProperty::detail::setting

// omu::add_properties -dict {NAME VALUE ...} OBJECTS
// Sets several properties on all objects: in one change that can be undone, where the class can do that, else
// one by one, up to the first that fails.
#include "platform/gui/HDGUIStatus.h"
#include "platform/msg/ComMsgMgr.h"
#include "platform/tcl/tclcmdobj.h"
#include "tcltasks/property/detail/options.h"
#include "tcltasks/property/detail/setting.h"

using namespace vek::tcltasks;
using namespace HCPProperty;
using namespace HTCProperty::detail;

namespace add_properties {

namespace {

// Keeps the events of single properties quiet while it lives.
struct dictionary_way {
    dictionary_way() { setting::bUsingSetPropertyDictionaryWay = true; }
    ~dictionary_way() { setting::bUsingSetPropertyDictionaryWay = false; }
    dictionary_way(const dictionary_way&) = delete;
    dictionary_way& operator=(const dictionary_way&) = delete;
};

Pairs pairs_of(const std::vector<std::string>& words) {
    if (words.empty() || words.size() % 2 != 0) {
        throw HTCErrors::command_failed("Missing name/value pair in -dict argument.");
    }
    Pairs pairs;
    for (size_t i = 0; i < words.size(); i += 2) {
        pairs.emplace_back(words[i], words[i + 1]);
    }
    return pairs;
}

} // namespace

class task : public HTCITaskHelper<task, has_undo> {
public:
    static constexpr const char* command = "omu::add_properties";

    static void load_description() {
        in_categories("Object", "PropertyAndParameter");
        description_instance("Set property on object(s)", "")
            .add_options()
            .add_option("dict", options::list(), "list of property name/value pairs of properties to set")
            .add_option("objects", objects_option(), "Objects to set properties on")
            .required();
        positional_instance().add("objects", -1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        Utils::getGuiStatus(HTCGuiStatusAccess::getGuiStatus());
        const dictionary_way way;
        const auto words = get_option<std::vector<std::string>>("dict");
        const auto objects = get_option<Objects>("objects");
        Utils::atLeastOneObjectOrError(objects, "set_property");
        const Pairs pairs = pairs_of(words);
        int status = set_at_once(interp, objects, pairs);
        if (status == Setter::not_supported) {
            status = set_one_by_one(interp, objects, pairs);
        }
        setting::notifyDictionary(objects, pairs);
        return status;
    }

    int undo() override { return 0; }
    int undo(Tcl_Interp* interp, int, Tcl_Obj* const*) override {
        return m_setter ? m_setter->undo(interp) : 0;
    }
    int redo() override { return 0; }
    int redo(Tcl_Interp* interp, int, Tcl_Obj* const*) override {
        return m_setter ? m_setter->redo(interp) : 0;
    }

private:
    int set_at_once(Tcl_Interp* interp, const Objects& objects, const Pairs& pairs) {
        const auto spec = getObjectInfoOrError((*objects)[0])->getSpec(defaultSpecName, false);
        const auto setter = spec ? spec->getSetter() : nullptr;
        if (!setter) {
            return Setter::not_supported;
        }
        const unsigned errors = ComMsgMgr::getLifetimeErrorCount();
        const int status = setter->set(interp, objects, pairs);
        if (status == 0 && ComMsgMgr::getLifetimeErrorCount() == errors) {
            m_setter = setter;
        }
        return status;
    }

    static int set_one_by_one(Tcl_Interp* interp, const Objects& objects, const Pairs& pairs) {
        const tclobj_ref collection(native_wrapper<Objects>::convert_to_tcl(objects));
        for (const auto& [name, value] : pairs) {
            tclcmdobj inner(interp, "omu::set_property");
            if (value.starts_with('-')) {
                inner.append("-name").append(name).append("-value").append(value).append("-objects");
            } else {
                inner.append(name).append(value);
            }
            if (const int status = inner.append(collection.get()).eval()) {
                return status;
            }
        }
        return TCL_OK;
    }

    std::shared_ptr<Setter> m_setter;
};

extern const task_entry entry = entry_of<task>;

} // namespace add_properties

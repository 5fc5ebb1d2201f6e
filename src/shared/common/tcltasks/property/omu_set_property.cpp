// omu::set_property NAME VALUE OBJECTS
// Sets one property on all objects or, if anything is wrong, on none. Can be undone.
#include "platform/gui/HDGUIStatus.h"
#include "tcltasks/property/detail/options.h"
#include "tcltasks/property/detail/setting_task.h"

using namespace vek::tcltasks;
using namespace HCPProperty;
using namespace HTCProperty::detail;

namespace omu_set_property {

class task : public setting_task<task, has_undo> {
public:
    static constexpr const char* command = "omu::set_property";

    static void load_description() {
        in_categories("Object", "PropertyAndParameter");
        description_instance("Set property on object(s)", "")
            .add_options()
            .add_option("name", options::value<std::string>(), "Name of property to set")
            .required()
            .add_option("value", options::value<std::string>(), "Value of property to set")
            .required()
            .add_option("objects", objects_option(), "Objects to set properties on")
            .required();
        positional_instance().add("name", 1).add("value", 1).add("objects", -1);
    }
    std::string owner() const override { return "common"; }
    std::string task_help_name(const std::string&) const override { return "set_property"; }

    int execute(Tcl_Interp* interp) override {
        Utils::getGuiStatus(HTCGuiStatusAccess::getGuiStatus());
        m_name = get_option<std::string>("name");
        auto value = get_option<std::string>("value");
        const auto objects = get_option<Objects>("objects");
        Utils::atLeastOneObjectOrError(objects, "set_property");
        Utils::warnIfDeprecated((*objects)[0], m_name);
        Utils::mapPropertyNameAndValue((*objects)[0], m_name, value);
        m_setter = setting::create_property_setter(objects, m_name);
        HATAttr attr(HATAttrSrcInfoMgr::getSrcInfo(), HATAttrTypes::type_string);
        attr.setStringVal(value);
        if (m_setter && m_setter->set(interp, objects, m_name, attr) == 1) {
            return TCL_ERROR;
        }
        setting::checkNotifySetPropertyMultipleObjects(objects, m_name);
        if (m_setter) {
            m_setter->finish(m_name);
        }
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace omu_set_property

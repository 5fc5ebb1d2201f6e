// omu::set_attribute NAME ATTRIBUTE OBJECTS
// Sets one property on all objects to a typed value, which needs no text form. Can be undone.
#include "platform/gui/HDGUIStatus.h"
#include "tcltasks/core/native_types.h"
#include "tcltasks/property/detail/options.h"
#include "tcltasks/property/detail/setting_task.h"

using namespace vek::tcltasks;
using namespace HCPProperty;
using namespace HTCProperty::detail;

namespace set_attribute {

class task : public setting_task<task, has_undo> {
public:
    static constexpr const char* command = "omu::set_attribute";

    static void load_description() {
        in_categories("Object", "PropertyAndParameter");
        description_instance("Set property on object(s)", "")
            .add_options()
            .add_option("name", options::value<std::string>(), "Name of property to set")
            .required()
            .add_option("attribute", options::value<HATAttr*>(), "Value of property to set")
            .required()
            .add_option("objects", objects_option(), "Objects to set properties")
            .required();
        positional_instance().add("name", 1).add("attribute", 1).add("objects", -1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        Utils::getGuiStatus(HTCGuiStatusAccess::getGuiStatus());
        m_name = get_option<std::string>("name");
        HATAttr* const attr = get_option<HATAttr*>("attribute");
        const auto objects = get_option<Objects>("objects");
        Utils::atLeastOneObjectOrError(objects, "set_property");
        setting::checkNotifySetPropertyMultipleObjects(objects, m_name);
        m_setter = setting::create_property_setter(objects, m_name);
        if (m_setter && m_setter->set(interp, objects, m_name, *attr) == 1) {
            return TCL_ERROR;
        }
        if (m_setter) {
            m_setter->finish(m_name);
        }
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace set_attribute

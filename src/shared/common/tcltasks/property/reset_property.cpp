// reset_property NAME OBJECTS
// Gives a property its default again, on all objects or on none. Can be undone.
#include "platform/gui/HDGUIStatus.h"
#include "tcltasks/property/detail/options.h"
#include "tcltasks/property/detail/setting_task.h"

using namespace vek::tcltasks;
using namespace HCPProperty;
using namespace HTCProperty::detail;

namespace reset_property {

class task : public setting_task<task, has_undo> {
public:
    static constexpr const char* command = "common::reset_property";

    static void load_description() {
        in_categories("Object", "PropertyAndParameter");
        description_instance("Reset property on object(s)",
                             "The value that was set if success, \"\" if failure")
            .add_options()
            .add_option("property_name", options::value<std::string>(), "Name of property to reset")
            .hint("property")
            .required()
            .add_option("objects", objects_option(), "Objects to set properties")
            .required();
        positional_instance().add("property_name", 1).add("objects", -1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp*) override {
        Utils::getGuiStatus(HTCGuiStatusAccess::getGuiStatus());
        m_name = get_option<std::string>("property_name");
        const auto objects = get_option<Objects>("objects");
        Utils::atLeastOneObjectOrError(objects, "reset_property");
        const tclany& first = (*objects)[0];
        const auto info = getObjectInfoOrError(first);
        auto spec = info->getSpec(m_name, false);
        std::string canonical;
        if (spec) {
            HATAttrUtils::writableOrError(spec->getAttrSpec(), m_name);
            for (const tclany& object : *objects) {
                spec->isValidOrError(object, m_name, canonical);
            }
        }
        if (!spec || spec->getAttrSpec()->isUserDefined()) {
            spec = info->getSpec(defaultSpecName, false);
        }
        if (!spec) {
            Utils::noSuchProperty(m_name, Get::getClass(*info));
        }
        canonical.clear();
        spec->isValidOrError(first, m_name, canonical);
        m_name = canonical;
        m_setter = spec->getSetter();
        HATAttr attr(HATAttrSrcInfoMgr::getSrcInfo(), HATAttrTypes::type_string);
        if (m_setter) {
            if (m_setter->reset(objects, m_name, attr) == 1) {
                return TCL_ERROR;
            }
            m_setter->finish(m_name);
        }
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace reset_property

// delete_property NAME CLASS
// Removes a property that a user added to a class, with its values. Does nothing if there is none.
#include "platform/msg/ComMsgMgr.h"
#include "platform/msg/HEX.h"
#include "tcltasks/property/detail/options.h"

using namespace vek::tcltasks;
using namespace HCPProperty;

namespace delete_property {

class task : public HTCITaskHelper<task, breaks_undo> {
public:
    static constexpr const char* command = "common::delete_property";

    static void load_description() {
        in_categories("PropertyAndParameter");
        description_instance("Delete user defined property for class of object", "")
            .add_options()
            .add_option("name", options::value<std::string>(), "Name of property")
            .hint("property")
            .required()
            .add_option("class", options::value<std::string>(),
                        "Object type to delete property for; valid values are: design, net, cell, pin, port, "
                        "pblock, interface, fileset")
            .hint("class")
            .required();
        positional_instance().add("name", 1).add("class", 1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp*) override {
        m_name = get_option<std::string>("name");
        m_class = get_option<std::string>("class");
        const auto info = getObjectInfo(m_class);
        const auto spec = info ? info->getSpec(m_name, false) : nullptr;
        const auto byDefault = info ? info->getSpec(defaultSpecName, false) : nullptr;
        if (!spec || !byDefault) {
            return TCL_OK;
        }
        if (!spec->getAttrSpec()->isUserDefined()) {
            throw HEXError(ComMsgMgrInstance("common", ComMsgMgr::MSGTYPE_ERROR, "@17-5367@%s%s\n",
                                             spec->getName(), m_class));
        }
        byDefault->unregisterUserSpec(spec);
        info->deleteSpec(m_name);
        return TCL_OK;
    }

private:
    std::string m_name;
    std::string m_class;
};

extern const task_entry entry = entry_of<task>;

} // namespace delete_property

// list_property_value ?-default? ?-class NAME? NAME ?OBJECT?
// The legal values of a property, or its default; an empty list for a property that takes any value.
#include "platform/msg/ComMsgMgr.h"
#include "tcltasks/property/detail/options.h"

using namespace vek::tcltasks;
using namespace HCPProperty;
using namespace HTCProperty::detail;

namespace list_property_value {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::list_property_value";

    static void load_description() {
        in_categories("Object", "PropertyAndParameter");
        description_instance("List legal property values of object", "list of property values")
            .add_options()
            .add_option("default", options::flag(), "Show only the default value.")
            .add_option("class", options::text(),
                        "Object type to query for legal property values. Ignored if object is specified.")
            .hint("class")
            .add_option("name", options::value<std::string>(),
                        "Name of property whose legal values is to be retrieved")
            .hint("property")
            .required()
            .add_option("object", optional_objects_option(), "Object to query for legal properties values");
        positional_instance().add("name", 1).add("object", 1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        const auto name = get_option<std::string>("name");
        const auto objects = get_option<Objects>("object");
        const auto cls = get_option<std::string>("class");
        if (objects.size() > 0 && !cls.empty()) {
            ComMsgMgr::sendMsg("common", ComMsgMgr::MSGTYPE_WARNING, "@17-40@%s\n", cls);
        }
        if (objects.size() > 0 || cls.empty()) {
            Utils::oneObjectOrError(objects, "list_property_value");
            return values(interp, (*objects)[0], name);
        }
        return values(interp, cls, name);
    }

private:
    template <class Source>
    int values(Tcl_Interp* interp, const Source& source, const std::string& name) {
        if (get_option<bool>("default")) {
            HATAttrAny value;
            Get::getDefaultValue(interp, source, name, value);
            return TCL_OK;
        }
        std::vector<std::string> list;
        Utils::getValues(source, name, list, false);
        return set_result(interp, list);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace list_property_value

// get_property ?-min | -max? NAME OBJECT
// The value of a property: of one object as it is, of several objects a list. Fails without an object.
#include "platform/gui/HDGUIStatus.h"
#include "platform/property/HCPProperty.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;
using namespace HCPProperty;

namespace get_property {

namespace {

// Reads one object as a call for it alone would, but for the interpreter's result.
bool read(Reader& reader, const ObjectRange& objects, unsigned long i, HATAttrAny& value) {
    const ObjectRange::item item = objects[i];
    Utils::warnIfDeprecated(*item.info, reader.name());
    const bool has = reader.get(*item.info, item.object, value);
    if (!has && i == 0) {
        Utils::warnIfUnknown(reader, *item.info, item.object);
    }
    return has;
}

// Holds the values of a list until it is made.
class value_list {
public:
    ~value_list() {
        for (Tcl_Obj* value : m_values) {
            Tcl_DecrRefCount(value);
        }
    }
    void reserve(size_t count) { m_values.reserve(count); }
    void add(Tcl_Obj* value) {
        Tcl_IncrRefCount(value);
        m_values.push_back(value);
    }
    Tcl_Obj* list() const { return Tcl_NewListObj(static_cast<int>(m_values.size()), m_values.data()); }

private:
    std::vector<Tcl_Obj*> m_values;
};

} // namespace

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::get_property";

    static void load_description() {
        in_categories("Object", "PropertyAndParameter", "TDC");
        description_instance("Get properties of object", "property value")
            .add_options()
            .add_option("min", options::flag(), "Return only the minimum value")
            .add_option("max", options::flag(), "Return only the maximum value")
            .add_option("name", options::value<std::string>(),
                        "Name of property whose value is to be retrieved")
            .hint("property")
            .required()
            .add_option("object", options::value<Tcl_Obj*>(), "Object to query for properties")
            .required();
        positional_instance().add("name", 1).add("object", 1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        if (!interp) {
            return TCL_OK;
        }
        Utils::getGuiStatus(HTCGuiStatusAccess::getGuiStatus());
        const HDGUIStatus* status = Utils::getGuiStatus(nullptr);
        const bool min = get_option<bool>("min"), max = get_option<bool>("max");
        if (min && max) {
            throw HTCErrors::command_failed(
                "'min' and 'max' are mutually exclusive options, you can only specify one.");
        }
        const ObjectRange objects(interp, get_option<Tcl_Obj*>("object"));
        Reader reader(get_option<std::string>("name"));
        if (objects.size() < 2) {
            return one(interp, objects, reader);
        }
        return min || max ? extreme(interp, objects, reader, *status, min)
                          : all(interp, objects, reader, *status);
    }

private:
    static int one(Tcl_Interp* interp, const ObjectRange& objects, Reader& reader) {
        Utils::atLeastOneObjectOrError(objects.size(), "get_property");
        HATAttrAny value;
        if (read(reader, objects, 0, value)) {
            Tcl_SetObjResult(interp, HATAttrUtils::getTclValue(value));
        }
        return TCL_OK;
    }

    static int all(Tcl_Interp* interp, const ObjectRange& objects, Reader& reader,
                   const HDGUIStatus& status) {
        const tclobj_ref none(Tcl_NewObj());
        value_list values;
        values.reserve(objects.size());
        HATAttrAny value;
        for (unsigned long i = 0; i < objects.size(); ++i) {
            if (status.isCancelled()) {
                return TCL_OK;
            }
            values.add(read(reader, objects, i, value) ? HATAttrUtils::getTclValue(value) : none.get());
        }
        Tcl_SetObjResult(interp, values.list());
        return TCL_OK;
    }

    static int extreme(Tcl_Interp* interp, const ObjectRange& objects, Reader& reader,
                       const HDGUIStatus& status, bool min) {
        HATAttrAny best, value;
        bool found = false;
        for (unsigned long i = 0; i < objects.size(); ++i) {
            if (status.isCancelled()) {
                return TCL_OK;
            }
            if (read(reader, objects, i, value) &&
                (!found || (min ? HATAttrUtils::less(value, best) : HATAttrUtils::less(best, value)))) {
                std::swap(best, value);
                found = true;
            }
        }
        Tcl_Obj* const element = HATAttrUtils::getTclValue(best);
        Tcl_SetObjResult(interp, Tcl_NewListObj(1, &element));
        return TCL_OK;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace get_property

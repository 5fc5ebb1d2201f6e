// set_property NAME VALUE OBJECTS, set_property -dict {NAME VALUE ...} OBJECTS
// Sets one property, or several, on all objects. Hands its words to one of two inner commands, which can be
// undone.
#include <algorithm>
#include <cstring>

#include "platform/tcl/tclcmdobj.h"
#include "tcltasks/property/detail/options.h"

using namespace vek::tcltasks;

namespace set_property {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::set_property";

    static void load_description() {
        in_categories("Object", "PropertyAndParameter", "TDC");
        description_instance("Set property on object(s)", "")
            .add_options()
            .add_option("name", options::value<std::string>(),
                        "Name of property to set. Not valid with -dict option")
            .hint("property")
            .add_option("value", options::value<std::string>(),
                        "Value of property to set. Not valid with -dict option")
            .add_option("dict", options::list(), "list of name/value pairs of properties to set")
            .add_option("objects", HTCProperty::detail::objects_option(), "Objects to set properties on");
        positional_instance().add("name", 1).add("value", 1).add("objects", -1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp, int objc, Tcl_Obj* const* objv) override {
        if (objc > 1 && is(objv[1], "-help")) {
            return parse_options(interp, objc, objv);
        }
        const bool dict = std::any_of(objv, objv + objc, [](Tcl_Obj* word) { return is(word, "-dict"); });
        tclcmdobj inner(interp, dict ? "omu::add_properties" : "omu::set_property");
        for (int i = 1; i < objc; ++i) {
            inner.append(objv[i]);
        }
        return inner.eval();
    }

private:
    static bool is(Tcl_Obj* word, const char* text) {
        // A collection is no switch, and its text is never made to find out.
        return (word->bytes || !vek::tcltasks::detail::GetTclTypeInfo(word)) &&
               std::strcmp(Tcl_GetString(word), text) == 0;
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace set_property

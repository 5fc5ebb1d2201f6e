// list_property ?-class NAME? ?-regexp? ?OBJECT? ?PATTERN?
// The names of the properties of an object or a class, in the order in which the class declares them.
#include "platform/env/HUTEnv.h"
#include "platform/gui/HDGUIStatus.h"
#include "tcltasks/property/detail/arghelper.h"
#include "tcltasks/property/detail/listing.h"
#include "tcltasks/property/detail/options.h"

using namespace vek::tcltasks;
using namespace HCPProperty;
using namespace HTCProperty::detail;

namespace list_property {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "common::list_property";

    static void load_description() {
        in_categories("Object", "PropertyAndParameter");
        description_instance("List properties of object", "list of property names")
            .add_options()
            .add_option("object", optional_objects_option(), "Object to query for properties")
            .add_option("pattern", options::text("*"), "Pattern to match properties against")
            .add_option("class", options::text(),
                        "Object type to query for properties. Ignored if object is specified.")
            .hint("class")
            .add_option("regexp", options::flag(), "Pattern is treated as a regular expression");
        positional_instance().add("object", 1).add("pattern", 1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        Utils::getGuiStatus(HTCGuiStatusAccess::getGuiStatus());
        auto objects = get_option<Objects>("object");
        const auto cls = get_option<std::string>("class");
        auto pattern = get_option<std::string>("pattern");
        arghelper::adjustObjectAndPatternOrError(objects, pattern, cls);
        listing::Entries entries;
        if (cls.empty()) {
            Utils::oneObjectOrError(objects, "list_property");
            Utils::getPropertyNames((*objects)[0], entries);
        } else {
            Utils::getPropertyNames(cls, entries);
        }
        listing::keepMatching(entries, pattern, get_option<bool>("regexp"));
        std::vector<std::string> names;
        for (const auto& entry : entries) {
            if (entry.visible || entry.hasValue || HUTEnv::isTclDebug()) {
                names.push_back(entry.name);
            }
        }
        return set_result(interp, names);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace list_property

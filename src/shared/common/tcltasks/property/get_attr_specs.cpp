// omu::get_attr_specs -object OBJECT | -class NAME ?-regexp ?-nocase?? ?-filter EXPRESSION? ?PATTERN?
// The specifications of the properties of an object or a class, as objects of the class "attr_spec".
#include "platform/property/HCPTclFilterMatch.h"
#include "platform/tcl/HTCTclPatternMatch.h"
#include "tcltasks/core/native_types.h"
#include "tcltasks/property/detail/options.h"

using namespace vek::tcltasks;
using namespace HCPProperty;
using namespace HTCProperty::detail;

namespace get_attr_specs {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::get_attr_specs";

    static void load_description() {
        in_categories("Object", "PropertyAndParameter");
        description_instance("List attribute objects as Tcl objects", "list of attribute objects")
            .add_options()
            .add_option("object", optional_objects_option(), "Object to query for attribute specs")
            .add_option("class", options::text(),
                        "Object type to query for attribute specs. Ignored if object is specified.")
            .hint("class")
            .add_option("regexp", options::flag(), "Patterns are full regular expressions")
            .add_option("nocase", options::flag(),
                        "Perform case-insensitive matching (valid only when -regexp specified)")
            .add_option("filter", options::text(), "Filter list with expression")
            .add_option("pattern", options::text("*"),
                        "Match attribute specification names against patterns");
        positional_instance().add("pattern", 1);
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        check_options();
        const bool regexp = get_option<bool>("regexp"), nocase = get_option<bool>("nocase");
        const HTCTclPatternMatch pattern(get_option<std::string>("pattern"), regexp, nocase);
        tclany object;
        const auto info = chosen_class(object);
        tcl_collection<HSTVector<HATAttrSpec*>> specs;
        for (auto at = info->beginAttrSpec(object); !(at == info->endAttrSpec()); ++at) {
            if (pattern.match((*at)->getName())) {
                specs->push_back(*at);
            }
        }
        if (specified_option("filter")) {
            HCPTclFilterMatch filter(get_option<std::string>("filter"), interp, regexp, nocase);
            std::erase_if(static_cast<std::vector<HATAttrSpec*>&>(*specs),
                          [&](HATAttrSpec* spec) { return !filter.match(tclany(spec)); });
        }
        return set_result(interp, specs);
    }

private:
    void check_options() const {
        if (get_option<bool>("nocase") && !get_option<bool>("regexp")) {
            throw HTCErrors::command_failed("'-nocase' can only be used with '-regexp'");
        }
        const bool object = specified_option("object"), cls = specified_option("class");
        if (cls && object) {
            throw HTCErrors::command_failed(
                "'class' and 'object' are mutually exclusive options, you can only specify one.");
        }
        if (!cls && !object) {
            throw HTCErrors::command_failed(
                "atleast one of 'class' or 'object' options need to be specified.");
        }
        if (cls && get_option<std::string>("class").empty()) {
            throw HTCErrors::command_failed("'class' name need to be specified.");
        }
    }

    std::shared_ptr<ObjectInfo> chosen_class(tclany& object) const {
        if (!specified_option("object")) {
            return getObjectInfoOrError(get_option<std::string>("class"));
        }
        const auto objects = get_option<Objects>("object");
        if (objects.size() > 1) {
            throw HTCErrors::command_failed("Only one object can be specified.");
        }
        Utils::atLeastOneObjectOrError(objects, "get_attr_specs");
        object = (*objects)[0];
        return getObjectInfoOrError(object);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace get_attr_specs

// filter ?-regexp? ?-nocase? collection expression
// The objects for which the expression holds, as a collection of their class.
#include "design/Query.h"
#include "design/cmds/objects.h"

using namespace vek::tcltasks;

namespace design::cmds::filter {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "filter";

    static void load_description() {
        in_categories("Object");
        description_instance("Keep the objects for which an expression holds", "list of objects")
            .add_options()
            .add_option("regexp", options::flag(), "=~ and !~ take regular expressions.")
            .add_option("nocase", options::flag(), "Compare texts without regard to upper and lower case.")
            .add_option("collection", options::value<design::ObjectList>(), "The objects.")
            .required()
            .add_option("expression", options::text(),
                        "Comparisons of properties, as 'ref_name =~ LUT* && fanout > 4'.")
            .required();
        positional_instance().add("collection", 1).add("expression", 1);
    }
    std::string owner() const override { return "design"; }

    int execute(Tcl_Interp* interp) override {
        design::Filter compiled(get_option<std::string>("expression"),
                                {get_option<bool>("regexp"), get_option<bool>("nocase")});
        auto list = get_option<design::ObjectList>("collection");
        list.objects = design::filter_objects(std::move(list.objects), compiled);
        return set_result(interp, list);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace design::cmds::filter

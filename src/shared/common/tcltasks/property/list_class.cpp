// debug::list_class
// The names of all classes of objects that have properties, sorted.
#include <algorithm>

#include "tcltasks/property/detail/options.h"

using namespace vek::tcltasks;
using namespace HCPProperty;

namespace list_class {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "debug::list_class";

    static void load_description() {
        description_instance("List all class names understood by property commands", "list of class names")
            .add_options()
            .add_option("quiet", options::flag(), "Unimplemented and hidden");
    }
    std::string owner() const override { return "common"; }

    int execute(Tcl_Interp* interp) override {
        std::vector<std::shared_ptr<ObjectInfo>> classes;
        getAllObjectInfo(classes);
        std::vector<std::string> names;
        for (const auto& info : classes) {
            const auto spec = info->getSpec("class", false);
            if (!spec) {
                continue;
            }
            HATAttrAny name;
            names.push_back(spec->getProperty(tclany(), "class", name) ? HATAttrUtils::getStringValue(name)
                                                                       : info->getType().name());
        }
        std::sort(names.begin(), names.end());
        return set_result(interp, names);
    }
};

extern const task_entry entry = entry_of<task>;

} // namespace list_class

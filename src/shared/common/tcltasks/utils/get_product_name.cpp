// omu::get_product_name
// The product's name.
#include "platform/env/HUTEnv.h"
#include "tcltasks/core/task.h"

using namespace vek::tcltasks;

namespace get_product_name {

class task : public HTCITaskHelper<task> {
public:
    static constexpr const char* command = "omu::get_product_name";

    static void load_description() {
        in_categories("Report");
        description_instance("Return the name of current product", "name");
    }
    std::string owner() const override { return "common"; }
    bool is_hidden() const override { return true; }

    int execute(Tcl_Interp* interp) override { return set_result(interp, HUTEnv::getProductName()); }
};

extern const task_entry entry = entry_of<task>;

} // namespace get_product_name
